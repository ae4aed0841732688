#pragma once

#include <charconv>
#include <string>
#include <string_view>
#include <vector>

#include "recording/mediaport.h"

namespace qv3::test {

/// A sound device whose sound stands where the test puts it. Keeps every command but the questions.
class FakeMedia final : public MediaPort {
 public:
  MediaReply send(std::string_view command) override {
    if (refuse || command == refused) return {302, ""};
    if (command == "status WavFile mode") {
      return modeless ? MediaReply{263, ""} : MediaReply{0, mode};
    }
    if (command == "status WavFile position") {
      return silent ? MediaReply{263, ""} : MediaReply{0, std::to_string(position)};
    }
    commands.emplace_back(command);
    if (command.starts_with("play ")) mode = "playing";
    if (command.starts_with("record ")) mode = "recording";
    if (command.starts_with("pause ")) mode = "paused";
    if (command.starts_with("stop ")) mode = "stopped";
    const std::size_t number = command.find_last_of(' ') + 1;
    std::int64_t place = 0;
    const char* end = command.data() + command.size();
    if (std::from_chars(command.data() + number, end, place).ptr == end) position = place;
    return {};
  }
  std::string errorText(int code) override { return std::to_string(code); }

  std::vector<std::string> commands;
  std::string mode = "stopped";
  std::int64_t position = 0;
  bool refuse = false;    ///< every command
  std::string refused;    ///< this command
  bool silent = false;    ///< the position alone
  bool modeless = false;  ///< the mode alone
};

}  // namespace qv3::test
