#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace qv3 {

/// A recording's name without folder and extension: the prefix and a three-digit number (suffix
/// type 0), or the prefix and `fileStamp`, the moment as "yy-mm-dd__Hh.Nn.Ss" (any other type).
std::string recordingName(const std::string& prefix, std::int32_t suffixType, std::int32_t number,
                          const std::string& fileStamp);

/// "nnn" or "Date__Time": the suffix as tool tips show it.
std::string_view suffixPlaceholder(std::int32_t suffixType);

/// Why a prefix is refused: the characters that no system of those that share folders allows in
/// names, and names too long for a file system. A prefix may name a folder.
enum class PrefixFault { None, Character, Length };
PrefixFault checkPrefix(std::string_view prefix);

/// A name ending in three characters taken as a number: the numbered list of files goes over these.
struct NumberedName {
  std::string prefix;
  int number = 0;
};

/// Splits off the last three characters of a base name; what they are no number counts as 0. A name
/// of fewer than three characters is all prefix.
NumberedName splitNumberedName(std::string_view name);

/// Seconds that a skip of a session of so many whole seconds takes.
int skipSeconds(std::int32_t sessionSeconds);

/// "h:mm:ss", as times stand in labels: "0:00:00", "26:03:59".
std::string formatDuration(std::int64_t seconds);

/// Whether a byte of UTF-8 is not the first of its character.
bool isInsideCharacter(char byte);

/// Whether two names differ at most in the case of the letters a to z.
bool sameIgnoringCase(std::string_view a, std::string_view b);

/// Adds `extension` (".qvd") unless the name ends in it, in any case.
std::string withExtension(const std::string& name, std::string_view extension);

}  // namespace qv3
