#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qv3::metersim {

/// Without blanks, tabs and line ends around it.
std::string_view trimmed(std::string_view text);

/// The pieces between separators; always at least one.
std::vector<std::string_view> split(std::string_view text, char separator);

/// All of the text as a number; nothing if it is none (blanks, signs doubled, "inf" and "nan" are
/// no numbers).
std::optional<double> toNumber(std::string_view text);
std::optional<long> toWhole(std::string_view text);

/// "\r", "\n", "\\" and "\xHH" become the characters they stand for; nothing if a "\" stands
/// before something else.
std::optional<std::string> unescaped(std::string_view text);

/// The other way round, for people to read: all that is no printable ASCII.
std::string escaped(std::string_view text);

}  // namespace qv3::metersim
