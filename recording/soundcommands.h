#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "recording/mediaport.h"
#include "recording/sounddevice.h"
#include "recording/soundwords.h"

namespace qv3 {

/// Characters of a reply or an error text, the closing zero of the original interface included.
constexpr std::size_t kSoundReplyLimit = 128;

/// The command strings over a sound device, which has the one alias "WavFile". What is wrong with a
/// command is found in a fixed order: nothing there, no alias, unknown verb, alias not open, then
/// the words, last what the device says. A command that fails changes nothing.
class SoundCommands final : public MediaPort {
 public:
  explicit SoundCommands(SoundDevice& device) : m_device(device) {}

  MediaReply send(std::string_view command) override { return send(command, kSoundReplyLimit); }
  std::string errorText(int code) override { return errorText(code, kSoundReplyLimit); }

  /// Replies and texts are cut to `limit` - 1 characters.
  MediaReply send(std::string_view command, std::size_t limit);
  std::string errorText(int code, std::size_t limit) const;

 private:
  using Words = std::vector<SoundWord>;

  MediaReply answer(std::string_view command);
  MediaReply open(const Words& words);
  MediaReply openNamed(const SoundWord& name, bool isNew, const std::string* type);
  MediaReply close(const Words& words);
  MediaReply set(const Words& words);
  MediaReply status(const Words& words);
  MediaReply record(const Words& words);
  MediaReply play(const Words& words);
  MediaReply pause(const Words& words);
  MediaReply resume(const Words& words);
  MediaReply stop(const Words& words);
  MediaReply seek(const Words& words);
  MediaReply remove(const Words& words);
  MediaReply save(const Words& words);

  struct Verb;
  static const Verb* findVerb(const SoundWord& word);

  SoundDevice& m_device;
};

}  // namespace qv3
