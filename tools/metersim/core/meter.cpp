#include "tools/metersim/core/meter.h"

#include <algorithm>
#include <array>

#include "tools/metersim/core/text.h"

namespace qv3::metersim {

struct Meter::Model {
  std::string_view code;
  char tag;        ///< of its frames unless asked otherwise
  char secondTag;  ///< after `secondCommand`
  std::string_view firstCommand;
  std::string_view secondCommand;
  bool hasSwitch;
};

namespace {

constexpr char kErrorTag = 'X';
constexpr char kSwitchTag = 'T';

// The host drops every other character of the reply.
bool inReplyAlphabet(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return c >= ',' && c <= 'Z'; });
}

std::string hexDigits(std::uint16_t reading) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string digits;
  for (int shift = 12; shift >= 0; shift -= 4) digits += kDigits[(reading >> shift) & 15];
  return digits;
}

}  // namespace

std::string identityError(const MeterIdentity& identity) {
  constexpr std::string_view kAlphabet = "only characters from \",\" to \"Z\" can be sent";
  if (identity.model.size() != 2 || !inReplyAlphabet(identity.model) ||
      identity.model.find(',') != std::string::npos) {
    return "a model is two characters from \"-\" to \"Z\", such as 3A";
  }
  if (!inReplyAlphabet(identity.field2)) return "field 2: " + std::string(kAlphabet);
  if (identity.field2.find(',') != std::string::npos) return "field 2 cannot hold a comma";
  if (!inReplyAlphabet(identity.field3)) return "field 3: " + std::string(kAlphabet);
  if (identity.tail.find('\r') != std::string::npos) return "a frame's tail cannot hold a CR";
  return {};
}

const Meter::Model& Meter::modelOf(std::string_view code) {
  static constexpr std::array<Model, 5> kModels{{{"3A", 'P', 'P', "", "", true},
                                                 {"40", 'P', 'O', "", "O", false},
                                                 {"2A", 'P', 'O', "", "O", false},
                                                 {"31", 'L', 'R', "SL", "SR", false},
                                                 {"", 'P', 'P', "", "", false}}};
  const auto known = std::find_if(kModels.begin(), kModels.end() - 1,
                                  [code](const Model& model) { return model.code == code; });
  return *known;
}

Meter::Meter(MeterIdentity identity)
    : m_identity(std::move(identity)), m_model(modelOf(m_identity.model)) {}

void Meter::powerOn() {
  quiet();
  m_errorFrames = 0;
}

void Meter::quiet() {
  m_unlocked = false;
  m_streaming = false;
  m_secondTag = false;
  m_presses = 0;
}

Meter::Answer Meter::command(std::string_view text) {
  if (text == "V") {
    const std::string usual =
        "V,QV" + m_identity.model + "," + m_identity.field2 + "," + m_identity.field3 + "\r";
    return {m_identity.answer.value_or(usual), "asked who it is"};
  }
  if (text == "Q") {
    quiet();
    return {{}, "quiet and locked"};
  }
  if (text == "U") {
    unlock();
    return {{}, "unlocked"};
  }
  if (text == "R") {
    startStream();
    return {{}, m_streaming ? "streams" : "ignored, it is locked: U first"};
  }
  if (!text.empty() && (text == m_model.firstCommand || text == m_model.secondCommand)) {
    m_secondTag = text == m_model.secondCommand;
    return {{}, std::string("sends ") + tag() + " frames"};
  }
  return {{}, "ignored, not a command of this model"};
}

bool Meter::press() {
  if (m_model.hasSwitch) ++m_presses;
  return m_model.hasSwitch;
}

char Meter::tag() const {
  return m_secondTag ? m_model.secondTag : m_model.tag;
}

std::string Meter::frame(std::uint16_t reading) {
  if (m_errorFrames > 0) {
    --m_errorFrames;
    return kErrorTag + hexDigits(0) + m_identity.tail + "\r";
  }
  char letter = tag();
  if (m_presses > 0) {
    --m_presses;
    letter = kSwitchTag;
  }
  return letter + hexDigits(reading) + m_identity.tail + "\r";
}

}  // namespace qv3::metersim
