#include "instrument/session/takesound.h"

#include "recording/recorder.h"

namespace qv3 {
namespace {

constexpr const char* kMissingTiming =
    "The Dummy.mp3 file is missing. This should be located in the application directory.";
constexpr const char* kUnusableTiming =
    "The Dummy.mp3 file could not be loaded for the following reason(s): ";

OpenedSound refused(SessionState& state, const MediaReply& reply, std::int32_t units) {
  return {units, false, state.errorText(reply)};
}

std::string quoted(const std::string& path) {
  return '"' + path + '"';
}

OpenedSound openMpeg(SessionState& state, const std::string& path) {
  MediaPort& media = state.world.media;
  const MediaReply opened = media.send("open " + quoted(path) + " type mpegvideo alias WavFile");
  if (!opened.ok()) return refused(state, opened, 1000);
  media.send("status WavFile length");
  return {1000, true, {}};
}

OpenedSound openWave(SessionState& state, const std::string& path) {
  MediaPort& media = state.world.media;
  const MediaReply opened = media.send("open " + quoted(path) + " type waveaudio alias WavFile");
  if (!opened.ok()) return refused(state, opened, kSoundBytesPerSecond);
  media.send("set WavFile time format bytes");
  media.send("status WavFile length");
  const auto rate = media.send("status WavFile samplespersec").number();
  const auto bits = media.send("status WavFile bitspersample").number();
  const auto channels = media.send("status WavFile channels").number();
  if (!rate || !bits || !channels) return {kSoundBytesPerSecond, true, {}};
  const std::int64_t units = *rate * *channels * *bits / 8;
  if (units <= 0 || units > INT32_MAX) return {kSoundBytesPerSecond, false, {}};
  return {static_cast<std::int32_t>(units), true, {}};
}

}  // namespace

std::optional<OpenedSound> openTimingTrack(SessionState& state) {
  if (!state.world.files.size(state.world.timingTrack)) {
    state.tell("msgNoDummy", "File Not Found", kMissingTiming);
    return std::nullopt;
  }
  const OpenedSound sound = openMpeg(state, state.world.timingTrack);
  if (sound.audible) return sound;
  state.tell("msgNoDummy", "File Not Found", kUnusableTiming + sound.error);
  return std::nullopt;
}

OpenedSound openTakeSound(SessionState& state, const Take& take) {
  state.world.media.send("close WavFile");
  const TakeSound& sound = take.sound;
  if (!take.withSound) return openMpeg(state, state.world.timingTrack);
  switch (sound.kind) {
    case TakeSound::Kind::Spool:
    case TakeSound::Kind::Wav:
      return openWave(state, sound.path);
    case TakeSound::Kind::Mp3:
      return openMpeg(state, sound.path);
    case TakeSound::Kind::None:
      break;
  }
  return {};
}

}  // namespace qv3
