#pragma once

#include <cstdint>
#include <optional>
#include <utility>

#include "recording/recordbuffer.h"
#include "recording/samplerecord.h"

namespace qv3 {

/// Bytes of recorded sound a second: 22050 Hz, 16 bit, one channel.
constexpr std::int32_t kSoundBytesPerSecond = 44100;

/// Collects the samples of one recording and stamps them. Its life: `start` (lead-in, nothing
/// kept), `startData`, `append` once a sample, `end`. The records stay until the next `start`.
class Recorder {
 public:
  /// What the instrument shows at a sample; the time stamp is the recorder's own.
  struct Sample {
    std::int32_t reading = 0;
    std::int32_t needleShown = 0;
    std::int16_t bdTenths = 0;
    std::uint8_t basePosition = 0;
    std::uint8_t knobPosition = 0;
    std::uint8_t flags = 0;
    char packetType = 'P';
    std::int32_t sampleCount = 0;  ///< frames counted: in this second of sound, or since the start
    std::int32_t tagCount = 0;     ///< number of the last tag
  };

  enum class Phase { Idle, LeadIn, Data };

  /// `withSound` says how stamps are made until the next start.
  void start(bool withSound);
  void startData(const SessionStart& start);
  void append(const Sample& sample);
  void end() { m_phase = Phase::Idle; }

  Phase phase() const { return m_phase; }
  bool withSound() const { return m_withSound; }

  /// The next sample carries the tag.
  void markTag() { m_tagPending = true; }

  /// Takes a position of the sound, in bytes since the lead-in began. True if a whole second was
  /// passed: the sample counter starts again at 1.
  bool takeSoundPosition(std::int64_t bytes);
  void forgetSoundPosition();
  std::int32_t elapsedSeconds() const { return m_elapsedSeconds; }

  const RecordBuffer& records() const { return m_records; }
  /// Hands the records over, once the recording has ended.
  RecordBuffer takeRecords() { return std::exchange(m_records, {}); }
  const std::optional<SessionStart>& sessionStart() const { return m_start; }

 private:
  std::int32_t stamp(std::int32_t sampleCount);

  RecordBuffer m_records;
  std::optional<SessionStart> m_start;
  Phase m_phase = Phase::Idle;
  bool m_withSound = false;
  bool m_tagPending = false;
  std::int32_t m_lastTime = 0;
  std::int32_t m_lastAudioSecond = 0;
  std::int32_t m_elapsedSeconds = 0;  ///< whole seconds of recorded data, by the sound
  std::int32_t m_previousSecondCount = 0;
};

}  // namespace qv3
