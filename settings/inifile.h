#pragma once

#include <cstddef>
#include <functional>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

#include "settings/textstore.h"

namespace qv3 {

// The settings file's format: "[Section]" lines, "key=value" lines, and lines that belong to
// nobody. Below are functions on the bytes of a whole file (nothing = no file), then one that edits
// a file.
//
// Reading: lines end with CR LF, LF or CR. Blanks (space, tab, vertical tab, form feed, 0x1A)
// around a section's name, a key and a value do not count, neither does the case of A-Z. A section
// ends its name at the line's last "]"; what follows is ignored. The first section and the first
// key of a name count; keys before the first section belong to none. The first "=" splits a line,
// one without "=" is no key. A line beginning with ";" is a comment. NUL ends a value; one pair of
// equal outer quotes (" or ') is taken off it. A UTF-8 mark at the file's start is skipped.

/// The longest value that the program reads, in characters.
inline constexpr std::size_t kIniValueLimit = 254;

/// What a reader with room for `size` bytes, one of them for the end, gets: the key's value or the
/// default text, which loses trailing blanks and its quotes. Without a key the names of the
/// section's keys, without a section the names of all sections, each followed by a zero.
std::string readIni(const std::optional<std::string>& file, std::optional<std::string_view> section,
                    std::optional<std::string_view> key, std::string_view defaultText,
                    std::size_t size = std::numeric_limits<std::size_t>::max());

/// Sets a value; without a value the key goes, without a key the section goes. The first key of the
/// name takes the value in place and keeps its spelling. A new key follows the last line of its
/// section that is not blank, a new section the last line of the file. A value loses leading
/// blanks and is otherwise written as it is; every other byte of the file stays. New lines end as
/// the file's do, in a new file with CR LF. False, and nothing is done, without a section.
bool WriteIniString(std::optional<std::string>& file, std::optional<std::string_view> section,
                    std::optional<std::string_view> key, std::optional<std::string_view> value);

/// A value as text of at most kIniValueLimit characters, out of the file's bytes; a missing file or
/// key gives the default text.
std::string ReadIniString(const std::optional<std::string>& file, std::string_view section,
                          std::string_view key, std::string_view defaultText);

/// Runs `edit` over the file at `path` (nothing = no file) and replaces it once by what comes out.
/// A file that is there and cannot be read is left alone: what it holds would be lost.
StoreResult editIniFile(TextStore& store, const std::string& path,
                        const std::function<void(std::optional<std::string>& file)>& edit);

}  // namespace qv3
