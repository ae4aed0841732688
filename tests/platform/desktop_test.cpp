#include "platform/desktop.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include "tests/platform/eventloop.h"

namespace qv3 {
namespace {

using Programs = std::vector<std::vector<std::string>>;

class SystemInfo : public testing::Test {
 protected:
  /// A file of this name with this content in `folder`; returns its path.
  std::string install(const QTemporaryDir& folder, const char* name, const char* content = "") {
    QFile file(folder.filePath(QLatin1String(name)));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(content);
    EXPECT_TRUE(file.setPermissions(QFile::ReadUser | QFile::ExeUser));
    return file.fileName().toStdString();
  }

  std::string searchPath() const { return (m_local.path() + ":" + m_system.path()).toStdString(); }

  QTemporaryDir m_local;
  QTemporaryDir m_system;
};

TEST_F(SystemInfo, IsShownByTheBestProgramOnThePath) {
  EXPECT_EQ(systemInfoPrograms(searchPath()), Programs());
  const std::string panel = install(m_local, "gnome-control-center");
  const std::string report = install(m_system, "hardinfo");
  install(m_system, "gnome-control-center");
  EXPECT_EQ(systemInfoPrograms(searchPath()), Programs({{report}, {panel, "info-overview"}}));
  EXPECT_TRUE(QFile::setPermissions(QString::fromStdString(report), QFile::ReadUser));
  EXPECT_EQ(systemInfoPrograms(searchPath()), Programs({{panel, "info-overview"}}));
  EXPECT_EQ(systemInfoPrograms(""), Programs());
}

TEST_F(SystemInfo, StartsTheNextProgramWhereOneDoesNotStart) {
  const QString trace = m_local.filePath(QStringLiteral("trace"));
  const std::string broken = install(m_local, "hardinfo2",
                                     "\x7f"
                                     "ELF");
  const std::string sound = install(m_local, "hardinfo",
                                    "#!/bin/sh\necho \"$1\" >\"${0%/*}/trace.new\"\n"
                                    "mv \"${0%/*}/trace.new\" \"${0%/*}/trace\"\n");
  EXPECT_FALSE(showSystemInfo({}));
  EXPECT_FALSE(showSystemInfo({{broken}}));
  ASSERT_TRUE(showSystemInfo({{broken}, {sound, "a word"}}));
  ASSERT_TRUE(test::eventually([&] { return QFile::exists(trace); }));
  QFile file(trace);
  ASSERT_TRUE(file.open(QIODevice::ReadOnly));
  EXPECT_EQ(file.readAll(), "a word\n");
}

}  // namespace
}  // namespace qv3
