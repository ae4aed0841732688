#include "recording/setuprules.h"

#include "recording/recordmodes.h"

namespace qv3 {
namespace {

constexpr int kNumeric = 0;

}  // namespace

SetupRules SetupRules::opened(bool folder) {
  SetupRules rules;
  rules.automaticModes = folder;
  return rules;
}

void SetupRules::modeClicked(int mode, bool numeric, std::int32_t suffixNum) {
  prompt = mode != kAutoSaveMode;
  suffixTypes = mode != kManualMode;
  if (mode == kManualMode) {
    reset = false;
    numberShown = false;
  } else if (numeric) {
    numberShown = true;
    reset = suffixNum > 1;
  }
}

void SetupRules::suffixClicked(int type, std::int32_t suffixNum) {
  numberShown = type == kNumeric;
  reset = numberShown && suffixNum > 1;
}

void SetupRules::folderChosen(bool folder) {
  if (folder) automaticModes = true;
}

}  // namespace qv3
