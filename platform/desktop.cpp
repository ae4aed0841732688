#include "platform/desktop.h"

#include <QDesktopServices>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QUrl>
#include <algorithm>

namespace qv3 {
namespace {

/// A program, and what it has to be told to show the computer and nothing else.
struct Known {
  const char* name;
  const char* argument;
};
constexpr Known kKnown[] = {
    {"hardinfo2", nullptr},        {"hardinfo", nullptr},
    {"kinfocenter", nullptr},      {"gnome-control-center", "info-overview"},
    {"cinnamon-settings", "info"}, {"mate-system-monitor", "-s"},
    {"lshw-gtk", nullptr}};

}  // namespace

std::vector<std::vector<std::string>> systemInfoPrograms(const std::string& searchPath) {
  const QStringList folders = QString::fromStdString(searchPath).split(u':', Qt::SkipEmptyParts);
  std::vector<std::vector<std::string>> found;
  if (folders.isEmpty()) return found;  // the toolkit would take the environment's
  for (const Known& known : kKnown) {
    const QString path = QStandardPaths::findExecutable(QLatin1String(known.name), folders);
    if (path.isEmpty()) continue;
    found.push_back({path.toStdString()});
    if (known.argument != nullptr) found.back().emplace_back(known.argument);
  }
  return found;
}

bool showSystemInfo(const std::vector<std::vector<std::string>>& programs) {
  return std::any_of(programs.begin(), programs.end(), [](const std::vector<std::string>& line) {
    QStringList arguments;
    for (const std::string& word : line) arguments << QString::fromStdString(word);
    const QString program = arguments.takeFirst();
    return QProcess::startDetached(program, arguments);
  });
}

void openDocument(const std::string& path) {
  const QString file = QString::fromStdString(path);
  if (QFileInfo::exists(file)) QDesktopServices::openUrl(QUrl::fromLocalFile(file));
}

}  // namespace qv3
