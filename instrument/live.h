#pragma once

#include "instrument/metercore.h"
#include "link/streamdecoder.h"

namespace qv3 {

/// The live path: from a receive event to needle, graph and recorder, and the watchdog on it.
class Live final : private LinkEvents {
 public:
  explicit Live(MeterCore& core);

  /// Handles one receive event, whatever waits in the port. In playback the characters are dropped.
  void receiveEvent(const Now& now);

  /// One tick of the 800 ms clock timer; true if the meter fell silent with this tick.
  bool watchdogTick();

  /// The link as after a successful connection: receive events from now on, first after `threshold`
  /// characters.
  void connected(std::size_t threshold);

  /// Drops characters that wait and what was left of the last event.
  void dropReceived();
  void resetSilence() { m_silentTicks = 0; }

  StreamDecoder& decoder() { return m_decoder; }

 private:
  static constexpr std::size_t kFrameLength = 6;

  void Update_LED(Colour colour) override { m_core.Update_LED(colour); }
  void showStatus(const std::string& text, Colour colour) override {
    m_core.showStatus(text, colour);
  }
  void updateRecordTime() override;
  void switchPressed() override;
  void sensorReported(bool remote) override;

  LinkSettings linkSettings() const;
  void drop();
  void processSample(const Now& now);

  MeterCore& m_core;
  StreamDecoder m_decoder;
  bool m_noData = false;  ///< no receive event since the last tick
  int m_silentTicks = 0;
};

}  // namespace qv3
