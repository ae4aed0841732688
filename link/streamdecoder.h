#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "link/commport.h"
#include "link/frame.h"
#include "measure/meterstate.h"

namespace qv3 {

/// The settings that one receive event reads, taken afresh for every event.
struct LinkSettings {
  int LagLimit = 2;  ///< complete frames that one event may bring before the program counts as late
  Colour LED_Lag_Color = 0;
  Colour Dial_Color = 0;
  Colour Text_Color = 0;
  bool recording = false;
};

/// What the decoder needs done while it handles an event.
class LinkEvents {
 public:
  virtual ~LinkEvents() = default;

  virtual void Update_LED(Colour colour) = 0;
  virtual void showStatus(const std::string& text, Colour colour) = 0;
  virtual void updateRecordTime() = 0;  ///< the event holds a complete frame
  virtual void switchPressed() = 0;     ///< the meter's external switch
  virtual void sensorReported(bool remote) = 0;
};

/// Turns what the port received since the last event into at most one new reading, and keeps lag
/// lamp and link status up to date. Works on the `MeterState` it was given.
class StreamDecoder {
 public:
  StreamDecoder(MeterState& state, CommPort& port, LinkEvents& events)
      : m_state(state), m_port(port), m_events(events) {}

  /// One receive event. Afterwards the port's receive buffer is empty. When more than 50 characters
  /// waited, `NewReading` stays as the previous event left it.
  void Com_Input_Parse(const LinkSettings& settings);

  /// The test mode's receive event: what the port received is dropped, and a sine of some 8 s is
  /// the new reading.
  void syntheticReading(const LinkSettings& settings);

  void dropCarry() { InputCarry.clear(); }
  /// Characters kept of a frame whose end has not come, 7 at most.
  std::size_t carried() const { return InputCarry.size(); }

  std::int16_t GoodEvents = 0;   ///< successive events without error, 0..5; 5 is a healthy link
  std::int16_t ErrorFrames = 0;  ///< net count of a model "31" meter's "X" frames, 0..5

 private:
  void overflow(const LinkSettings& settings);
  int splitLines(std::string& frame);
  void keepCarry(std::string_view rest);
  bool accept(const Frame& frame);
  void remoteReading(const Frame& frame);
  void faultFrame();
  void inputError(const LinkSettings& settings);
  void recover(const LinkSettings& settings);
  void lightLagLamp(const LinkSettings& settings);

  MeterState& m_state;
  CommPort& m_port;
  LinkEvents& m_events;
  std::string InputCarry;  ///< characters after the last carriage return
  double m_phase = 0;      ///< of the synthetic reading
  std::string m_frame;     ///< reused, so that an event allocates nothing
};

}  // namespace qv3
