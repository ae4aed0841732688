#pragma once

#include <string>

namespace qv3 {

/// From where the program's folders are told. Paths are UTF-8; an empty one was not given.
struct FolderSources {
  std::string executableFolder;
  std::string homeOption;    ///< --home
  std::string homeVariable;  ///< $QV3_VARNEL_HOME
  std::string configHome;    ///< $XDG_CONFIG_HOME
  std::string userHome;      ///< the user's own folder
};

/// As the running program finds them; needs the application object.
FolderSources folderSources(const std::string& homeOption);

/// Where the program finds what it came with, and where it keeps its settings. All paths are
/// absolute, relative ones counting from the folder that was current at construction.
class ProgramFolders {
 public:
  explicit ProgramFolders(const FolderSources& sources);

  /// Settings, session config, recovery. It need not exist yet.
  const std::string& state() const { return m_state; }

  /// Creates the state folder where it is missing. Returns an error text, empty if it can be used.
  [[nodiscard]] std::string createState() const;

  /// Path of a file or folder that came with the program: beside the executable, or else in
  /// ../share/qv3-varnel. The first of the two if it is in neither.
  std::string data(const std::string& name) const;

 private:
  std::string m_executableFolder;
  std::string m_shared;
  std::string m_state;
};

}  // namespace qv3
