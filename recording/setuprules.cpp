#include "recording/setuprules.h"

namespace qv3 {
namespace {

constexpr int kManual = 1;
constexpr int kAutoSave = 3;
constexpr int kNumeric = 0;

}  // namespace

SetupRules SetupRules::opened(bool folder) {
  SetupRules rules;
  rules.automaticModes = folder;
  return rules;
}

void SetupRules::modeClicked(int mode, bool numeric, std::int32_t suffixNum) {
  prompt = mode != kAutoSave;
  suffixTypes = mode != kManual;
  if (mode == kManual) {
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
