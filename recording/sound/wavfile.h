#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "recording/sound/bytefile.h"
#include "recording/sound/capturerun.h"
#include "recording/sound/opensound.h"
#include "recording/sound/playbackrun.h"
#include "recording/sound/savejob.h"
#include "recording/sound/soundbackend.h"
#include "recording/sound/soundunits.h"
#include "recording/sound/spool.h"
#include "recording/sounddevice.h"

namespace qv3 {

/// What the device works with; all of it must outlive it.
struct WavFileParts {
  SoundBackend& backend;
  SoundFiles& files;
  std::function<SoundTime()> now;
  /// A path for the spool file of the next recording, which is not in use; empty if there is none.
  std::function<std::string()> nextSpool;
  /// Full path of the timing track, which is an endless clock.
  std::string timingTrack;
};

/// The sound device "WavFile": its states over the runs of playing and recording.
class WavFile final : public SoundDevice {
 public:
  explicit WavFile(WavFileParts parts) : m_parts(std::move(parts)) {}
  WavFile(const WavFile&) = delete;
  WavFile& operator=(const WavFile&) = delete;
  ~WavFile() override { close(); }

  SoundResult openFile(const std::string& path, SoundType type) override;
  SoundResult openNew() override;
  void close() override;
  bool isOpen() const override { return m_sound.has_value(); }
  SoundType type() const override;

  TimeFormat timeFormat() const override { return m_timeFormat; }
  SoundResult setTimeFormat(TimeFormat format) override;
  WaveFormat waveFormat() const override;
  SoundResult setWaveFormat(const WaveFormat& format) override;

  SoundResult record() override;
  SoundResult play(std::optional<std::int64_t> from, std::optional<std::int64_t> to) override;
  SoundResult pause() override;
  SoundResult resume() override;
  SoundResult stop() override;
  SoundResult seek(std::int64_t to) override;
  SoundResult seekToEnd() override;
  SoundResult removeRange(std::optional<std::int64_t> from,
                          std::optional<std::int64_t> to) override;
  SoundResult save(const std::string& path) override;
  SaveStart startSave(const std::string& path) override;

  SoundMode mode() override;
  std::int64_t length() override;
  std::optional<std::int64_t> position() override;
  std::optional<SpoolPlace> spool() const override;
  std::string failure() const override;

  /// Whether all that was in the room before the stop of the last recording has arrived, or has had
  /// its time to. True if nothing was recorded.
  bool isComplete() const;

 private:
  enum class State { Stopped, Playing, Paused, Recording, RecordingPaused };

  SoundResult enter();
  void open(OpenSound sound);
  SoundUnits units() const;
  std::int64_t cutFrames() const;
  std::int64_t lengthFrames(SoundTime now);
  std::int64_t placeFrames(SoundTime now);
  bool isBeyond(std::int64_t position, SoundTime now);
  std::int64_t toFrames(std::int64_t position, SoundTime now);
  SoundResult seekFrames(std::int64_t frame, SoundTime now);
  void halt(SoundTime now);
  void startPlaying(std::int64_t from, std::optional<std::int64_t> end, SoundTime now);
  SoundResult startRecording(SoundTime now);
  bool makeSpool();
  SaveSource saveSource();
  std::shared_ptr<SoundReader> reader();

  WavFileParts m_parts;
  std::optional<OpenSound> m_sound;
  TimeFormat m_timeFormat = TimeFormat::Milliseconds;
  State m_state = State::Stopped;
  std::int64_t m_place = 0;                 ///< frame at which it stands
  std::optional<std::int64_t> m_pausedEnd;  ///< where a paused playback ends
  std::shared_ptr<PlaybackRun> m_playback;
  std::shared_ptr<CaptureRun> m_capture;      ///< kept after its stop, while sound arrives
  std::shared_ptr<CaptureRun> m_lastCapture;  ///< of the device as it was before `close`
  std::shared_ptr<Spool> m_spool;             ///< of what is open
  std::optional<SpoolPlace> m_lastSpool;      ///< of the last recording, once it is closed
  std::string m_lastFailure;                  ///< likewise
};

}  // namespace qv3
