#include "recording/soundcommands.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

#include "recording/naming.h"
#include "recording/soundarguments.h"
#include "recording/sounderrors.h"

namespace qv3 {
namespace {

using namespace soundcode;

constexpr std::string_view kAlias = "wavfile";

MediaReply toReply(SoundResult result) {
  return {soundCode(result), {}};
}

/// Commands that take no words behind the alias.
bool hasMore(const std::vector<SoundWord>& words) {
  return words.size() > 2;
}

std::optional<SoundType> typeNamed(std::string_view name) {
  if (sameIgnoringCase(name, "waveaudio")) return SoundType::WaveAudio;
  if (sameIgnoringCase(name, "mpegvideo")) return SoundType::MpegVideo;
  return std::nullopt;
}

std::optional<SoundType> typeByExtension(std::string_view name) {
  constexpr std::size_t kExtension = 4;
  if (name.size() < kExtension) return std::nullopt;
  const std::string_view extension = name.substr(name.size() - kExtension);
  if (sameIgnoringCase(extension, ".wav")) return SoundType::WaveAudio;
  if (sameIgnoringCase(extension, ".mp3")) return SoundType::MpegVideo;
  return std::nullopt;
}

std::string_view modeName(SoundMode mode) {
  switch (mode) {
    case SoundMode::Stopped:
      return "stopped";
    case SoundMode::Playing:
      return "playing";
    case SoundMode::Paused:
      return "paused";
    case SoundMode::Recording:
      return "recording";
  }
  return {};
}

std::string_view timeFormatName(TimeFormat format) {
  switch (format) {
    case TimeFormat::Milliseconds:
      return "milliseconds";
    case TimeFormat::Bytes:
      return "bytes";
    case TimeFormat::Samples:
      return "samples";
  }
  return {};
}

std::string statusText(SoundDevice& device, StatusItem item) {
  switch (item) {
    case StatusItem::Length:
      return std::to_string(device.length());
    case StatusItem::Position:
      return std::to_string(device.position().value_or(0));
    case StatusItem::Mode:
      return std::string(modeName(device.mode()));
    case StatusItem::TimeFormat:
      return std::string(timeFormatName(device.timeFormat()));
    case StatusItem::SamplesPerSecond:
      return std::to_string(device.waveFormat().samplesPerSecond);
    case StatusItem::BitsPerSample:
      return std::to_string(device.waveFormat().bitsPerSample);
    case StatusItem::Channels:
      return std::to_string(device.waveFormat().channels);
    case StatusItem::Alignment:
      return std::to_string(device.waveFormat().alignment);
    case StatusItem::BytesPerSecond:
      return std::to_string(device.waveFormat().bytesPerSecond);
    case StatusItem::FormatTag:
      return "pcm";
    case StatusItem::MediaPresent:
    case StatusItem::Ready:
      return "true";
  }
  return {};
}

void cut(std::string& text, std::size_t limit) {
  if (text.size() + 1 > limit) text.resize(limit == 0 ? 0 : limit - 1);
}

}  // namespace

struct SoundCommands::Verb {
  std::string_view name;
  MediaReply (SoundCommands::*run)(const Words&);
};

const SoundCommands::Verb* SoundCommands::findVerb(const SoundWord& word) {
  static constexpr std::array kVerbs = {
      Verb{"open", &SoundCommands::open},     Verb{"close", &SoundCommands::close},
      Verb{"set", &SoundCommands::set},       Verb{"status", &SoundCommands::status},
      Verb{"record", &SoundCommands::record}, Verb{"play", &SoundCommands::play},
      Verb{"pause", &SoundCommands::pause},   Verb{"resume", &SoundCommands::resume},
      Verb{"stop", &SoundCommands::stop},     Verb{"seek", &SoundCommands::seek},
      Verb{"delete", &SoundCommands::remove}, Verb{"save", &SoundCommands::save},
  };
  const auto* verb = std::find_if(kVerbs.begin(), kVerbs.end(),
                                  [&](const Verb& known) { return word.is(known.name); });
  return verb == kVerbs.end() ? nullptr : verb;
}

MediaReply SoundCommands::send(std::string_view command, std::size_t limit) {
  MediaReply reply = answer(command);
  if (!reply.ok()) reply.text.clear();
  cut(reply.text, limit);
  return reply;
}

std::string SoundCommands::errorText(int code, std::size_t limit) const {
  std::string text(soundErrorText(code));
  cut(text, limit);
  return text;
}

MediaReply SoundCommands::answer(std::string_view command) {
  const SoundWords split = splitSoundCommand(command);
  if (!split.reaches(0)) return {kEmpty, {}};
  if (!split.reaches(1)) return {split.fault != 0 ? split.fault : kNoAlias, {}};
  const Verb* verb = findVerb(split.words[0]);
  if (!verb) return {kUnknownCommand, {}};
  const bool opens = verb->run == &SoundCommands::open;
  const bool aliasFault = split.words.size() == 1;
  if (split.fault != 0 && (opens || aliasFault)) return {split.fault, {}};
  if (!opens) {
    const SoundWord& alias = split.words[1];
    if (verb->run == &SoundCommands::close && alias.is("all")) return close({});
    if (!sameIgnoringCase(alias.text, kAlias) || !m_device.isOpen()) return {kNotOpen, {}};
  }
  if (split.fault != 0) return {split.fault, {}};
  return (this->*verb->run)(split.words);
}

MediaReply SoundCommands::open(const Words& words) {
  const OpenArguments arguments = parseOpen(words);
  if (!arguments.name) return {kNoAlias, {}};
  if (!arguments.alias) return {arguments.isNew ? kNewWithoutAlias : kNoAlias, {}};
  if (!sameIgnoringCase(*arguments.alias, kAlias)) return {kNotOpen, {}};
  if (m_device.isOpen()) return {kAliasInUse, {}};
  if (arguments.code != 0) return {arguments.code, {}};
  return openNamed(*arguments.name, arguments.isNew, arguments.type ? &*arguments.type : nullptr);
}

MediaReply SoundCommands::openNamed(const SoundWord& name, bool isNew, const std::string* type) {
  const std::optional<SoundType> known = type ? typeNamed(*type) : typeByExtension(name.text);
  if (!known) return {type ? kNotOpen : kUnknownExtension, {}};
  if (isNew && *known == SoundType::MpegVideo) return {kWrongOrder, {}};
  const SoundResult result = isNew ? m_device.openNew() : m_device.openFile(name.text, *known);
  return {soundCode(result), "1"};
}

MediaReply SoundCommands::close(const Words& words) {
  if (hasMore(words)) return {kUnknownWord, {}};
  m_device.close();
  return {};
}

MediaReply SoundCommands::set(const Words& words) {
  const SetArguments arguments = parseSet(words, m_device.type(), m_device.waveFormat());
  if (arguments.code != 0) return {arguments.code, {}};
  if (arguments.changesWave) {
    const SoundResult result = m_device.setWaveFormat(arguments.wave);
    if (result != SoundResult::Done) return toReply(result);
  }
  return arguments.timeFormat ? toReply(m_device.setTimeFormat(*arguments.timeFormat))
                              : MediaReply{};
}

MediaReply SoundCommands::status(const Words& words) {
  const StatusArguments arguments = parseStatus(words, m_device.type());
  if (arguments.code != 0) return {arguments.code, {}};
  return {kDone, statusText(m_device, arguments.item)};
}

MediaReply SoundCommands::record(const Words& words) {
  return hasMore(words) ? MediaReply{kUnknownWord, {}} : toReply(m_device.record());
}

MediaReply SoundCommands::play(const Words& words) {
  const RangeArguments range = parseRange(words);
  if (range.code != 0) return {range.code, {}};
  return toReply(m_device.play(range.from, range.to));
}

MediaReply SoundCommands::pause(const Words& words) {
  return hasMore(words) ? MediaReply{kUnknownWord, {}} : toReply(m_device.pause());
}

MediaReply SoundCommands::resume(const Words& words) {
  return hasMore(words) ? MediaReply{kUnknownWord, {}} : toReply(m_device.resume());
}

MediaReply SoundCommands::stop(const Words& words) {
  return hasMore(words) ? MediaReply{kUnknownWord, {}} : toReply(m_device.stop());
}

MediaReply SoundCommands::seek(const Words& words) {
  const SeekArguments arguments = parseSeek(words);
  if (arguments.code != 0) return {arguments.code, {}};
  return toReply(arguments.toEnd ? m_device.seekToEnd() : m_device.seek(arguments.to));
}

MediaReply SoundCommands::remove(const Words& words) {
  const RangeArguments range = parseRange(words);
  if (range.code != 0) return {range.code, {}};
  return toReply(m_device.removeRange(range.from, range.to));
}

MediaReply SoundCommands::save(const Words& words) {
  if (!hasMore(words)) return {kWrongOrder, {}};
  const SoundWord& name = words[2];
  if (words.size() > 3) return {name.quoted ? kUnknownWord : kUnknownCommand, {}};
  return toReply(m_device.save(name.text));
}

}  // namespace qv3
