#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qv3 {

// What the names of a folder's files tell. Names are given without their folder.

using FileNames = std::vector<std::string>;

/// The file of a base name and an extension (".wav"): by its exact name or, if there is none,
/// ignoring the case of letters.
std::optional<std::string> findCompanion(const FileNames& names, const std::string& base,
                                         std::string_view extension);

/// What a save as `base` takes out of the way: the data file and every sound that would pass for
/// the new recording's. A sound in other case that belongs to another recording is not touched.
FileNames replacedFiles(const FileNames& names, const std::string& base);

/// What Reset takes: ".wav", then ".qvd" files of `prefix` and exactly three characters.
FileNames resetFiles(const FileNames& names, const std::string& prefix);

}  // namespace qv3
