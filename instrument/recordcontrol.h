#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "instrument/instrument.h"
#include "recording/mediaport.h"
#include "recording/soundclock.h"
#include "settings/calendar.h"

namespace qv3 {

/// The seconds of the day, and the days since 31 December 1999, of a moment.
SessionStart sessionStartAt(const CalendarTime& moment);

/// The position of the sound device as the recorder's clock.
class MediaSoundClock final : public SoundClock {
 public:
  explicit MediaSoundClock(MediaPort& port) : m_port(port) {}
  std::optional<std::int64_t> position() override;

 private:
  MediaPort& m_port;
};

/// What a recording tells of itself. Called from `RecordControl`'s own calls.
class RecordEvents {
 public:
  virtual ~RecordEvents() = default;

  /// The lead-in is over: samples are kept from here.
  virtual void dataStarted(const SessionStart& start) = 0;
  /// The sound cannot be kept; the recording goes on without. `reason` is the device's text.
  virtual void soundRefused(const std::string& reason) = 0;
  /// It is over, the sound cut to it; `kept` is false if there is not one sample.
  virtual void recordingEnded(bool kept) = 0;
};

/// Takes a recording through its steps: lead-in, data, the stop on a whole second. Told the time by
/// `poll`, every few milliseconds while one runs; every wait of it is bounded.
class RecordControl {
 public:
  /// Who asks for the end of a recording.
  enum class Cause { User, LinkLost };

  /// `timingTrack` is the full path of the silent track that goes with recordings without sound.
  /// All references must outlive this.
  RecordControl(Instrument& instrument, MediaPort& media, std::string timingTrack,
                RecordEvents& events);
  ~RecordControl();
  RecordControl(const RecordControl&) = delete;
  RecordControl& operator=(const RecordControl&) = delete;

  void start(const Now& now);

  /// A lead-in is given up at once when the link is lost; the user cannot stop one. A second stop
  /// does nothing.
  void stop(Cause cause, const Now& now);

  /// The lead-in or the recording ends here and now, with nothing kept.
  void giveUp(const Now& now);

  /// `wall` is the present moment, taken as the session's start when the lead-in ends.
  void poll(const Now& now, const CalendarTime& wall);

  /// Something was received: a stop without sound waits for the next whole second of samples.
  void received(const Now& now);

 private:
  bool prepareSound();
  bool startSound();
  void pollLeadIn(const Now& now, const CalendarTime& wall);
  void pollStop(const Now& now);
  void end(const Now& now);
  std::int64_t wholeSeconds();
  bool passed(Instant since, Instant wait, const Now& now) const;
  Operation operation() const { return m_instrument.operation(); }

  Instrument& m_instrument;
  MediaPort& m_media;
  std::string m_timingTrack;
  RecordEvents& m_events;
  bool m_withSound = false;
  Cause m_cause = Cause::User;
  Instant m_stepBegan{0};  ///< of the lead-in, then of the stop
  Instant m_lastFrame{0};
  std::int64_t m_stopSecond = 0;
  std::int32_t m_stopCount = 0;
};

}  // namespace qv3
