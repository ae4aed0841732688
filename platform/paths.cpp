#include "platform/paths.h"

#include <fcntl.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QDir>
#include <filesystem>
#include <system_error>

#include "platform/errortexts.h"

namespace qv3 {
namespace {

namespace fs = std::filesystem;

constexpr char kShared[] = "share/qv3-varnel";
constexpr char kConfigName[] = "qv3-varnel";

std::string absolutePath(const fs::path& path) {
  std::error_code error;
  fs::path absolute = fs::absolute(path, error);
  if (error) absolute = path;
  absolute = absolute.lexically_normal();
  if (!absolute.has_filename() && absolute.has_relative_path()) absolute = absolute.parent_path();
  return absolute.string();
}

bool isThere(const fs::path& path) {
  std::error_code error;
  return fs::exists(path, error);
}

/// As the user that the program runs for, whoever started it.
bool isWritable(const std::string& folder) {
  return faccessat(AT_FDCWD, folder.c_str(), W_OK | X_OK, AT_EACCESS) == 0;
}

std::string configFolder(const FolderSources& sources) {
  const fs::path configHome(sources.configHome);
  const fs::path base =
      configHome.is_absolute() ? configHome : fs::path(sources.userHome) / ".config";
  return absolutePath(base / kConfigName);
}

std::string environment(const char* name) {
  return qEnvironmentVariable(name).toStdString();
}

}  // namespace

FolderSources folderSources(const std::string& homeOption) {
  return {QCoreApplication::applicationDirPath().toStdString(), homeOption,
          environment("QV3_VARNEL_HOME"), environment("XDG_CONFIG_HOME"),
          QDir::homePath().toStdString()};
}

ProgramFolders::ProgramFolders(const FolderSources& sources)
    : m_executableFolder(absolutePath(sources.executableFolder)),
      m_shared((fs::path(m_executableFolder).parent_path() / kShared).string()) {
  if (!sources.homeOption.empty()) {
    m_state = absolutePath(sources.homeOption);
  } else if (!sources.homeVariable.empty()) {
    m_state = absolutePath(sources.homeVariable);
  } else if (isWritable(m_executableFolder) && !isThere(m_shared)) {
    m_state = m_executableFolder;
  } else {
    m_state = configFolder(sources);
  }
}

std::string ProgramFolders::createState() const {
  std::error_code error;
  fs::create_directories(m_state, error);
  if (error) return errortext::folderNotMade(m_state, error.message());
  if (!isWritable(m_state)) return errortext::folderNotWritable(m_state);
  return {};
}

std::string ProgramFolders::data(const std::string& name) const {
  const fs::path beside = fs::path(m_executableFolder) / name;
  const fs::path shared = fs::path(m_shared) / name;
  return (!isThere(beside) && isThere(shared) ? shared : beside).string();
}

}  // namespace qv3
