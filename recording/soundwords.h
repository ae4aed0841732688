#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace qv3 {

/// One word of a sound command. Only a word without quotes is a keyword.
struct SoundWord {
  std::string text;
  bool quoted = false;

  /// Whether it is the keyword, in any case.
  bool is(std::string_view keyword) const;
};

/// A command cut at its blanks and quotation marks.
struct SoundWords {
  std::vector<SoundWord> words;  ///< a trailing `wait` is taken off
  int fault = 0;                 ///< an error code if the quotation marks are wrong

  /// Whether the word at `index` is there, if only as the one with the fault.
  bool reaches(std::size_t index) const {
    return words.size() > index || (fault != 0 && words.size() == index);
  }
};

SoundWords splitSoundCommand(std::string_view command);

struct SoundNumber {
  int code = 0;  ///< 0, or the error code
  std::int64_t value = 0;
};

/// Decimal digits only. A number that is too long counts as the largest there is.
SoundNumber parseSoundNumber(std::string_view text);

}  // namespace qv3
