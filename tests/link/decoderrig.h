#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "link/streamdecoder.h"
#include "tests/support/fakeport.h"

namespace qv3::test {

/// Does what the instrument does with what the decoder asks for, and counts it.
class StateEvents : public LinkEvents {
 public:
  explicit StateEvents(MeterState& state) : m_state(state) {}

  void Update_LED(Colour colour) override {
    m_state.LampColor = colour;
    ++lamps;
  }
  void showStatus(const std::string& text, Colour colour) override {
    m_state.ModeText = text;
    m_state.ModeColor = colour;
    ++statuses;
  }
  void updateRecordTime() override { ++recordTimes; }
  void switchPressed() override { ++presses; }
  void sensorReported(bool isRemote) override { sensors += isRemote ? 'R' : 'L'; }

  int lamps = 0;
  int statuses = 0;
  int recordTimes = 0;
  int presses = 0;
  std::string sensors;

 private:
  MeterState& m_state;
};

inline constexpr Colour kLagColour = 0x20;
inline constexpr Colour kDialColour = 0x3000;
inline constexpr Colour kTextColour = 0x400000;

/// A decoder at an open port, with a healthy link.
struct DecoderRig {
  explicit DecoderRig(const std::string& model) {
    state.MeterVersion = model;
    state.ModeText = "Input OK";
    state.LampColor = kDialColour;
    line.nodes["/dev/meter"] = {};
    (void)port.Com_Open("/dev/meter");
    decoder.GoodEvents = 5;
  }

  void event(std::string_view characters) {
    line.feed(characters);
    decoder.Com_Input_Parse(settings);
  }

  void events(int count, std::string_view characters) {
    for (int n = 0; n < count; ++n) event(characters);
  }

  std::vector<std::string> log;
  FakePort line{log};
  CommPort port{line};
  MeterState state;
  StateEvents shown{state};
  LinkSettings settings{2, kLagColour, kDialColour, kTextColour, false};
  StreamDecoder decoder{state, port, shown};
};

}  // namespace qv3::test
