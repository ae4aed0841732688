#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace qv3 {

/// The byte-order mark that some editors put before a UTF-8 text.
inline constexpr std::string_view kUtf8Mark = "\xef\xbb\xbf";

/// Bytes of a file as UTF-8 text: what is valid stays, every other byte is taken as Latin-1.
std::string textFromBytes(std::string_view bytes);

/// The first `count` characters of a UTF-8 text.
std::string firstCharacters(const std::string& text, std::size_t count);

}  // namespace qv3
