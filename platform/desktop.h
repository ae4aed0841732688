#pragma once

#include <string>
#include <vector>

namespace qv3 {

/// The command lines that show what this computer is and are installed in the folders of
/// `searchPath` (separated by colons), the fullest report first.
std::vector<std::vector<std::string>> systemInfoPrograms(const std::string& searchPath);

/// Starts the first of them that can be started, on its own; false if none can.
bool showSystemInfo(const std::vector<std::vector<std::string>>& programs);

/// In the desktop's viewer for such documents. Says nothing if there is none, or no document.
void openDocument(const std::string& path);

}  // namespace qv3
