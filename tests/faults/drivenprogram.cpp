#include "tests/faults/drivenprogram.h"

#include <linux/capability.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QJsonDocument>
#include <QJsonObject>
#include <csignal>

#include "tests/faults/driven.h"

namespace qv3::test {
namespace {

/// The administrator may write anywhere and open what is in use; the program is to be tried as a
/// user's. It ends with the tests.
void becomeUser() {
  for (const int right : {CAP_DAC_OVERRIDE, CAP_DAC_READ_SEARCH, CAP_SYS_ADMIN}) {
    prctl(PR_CAPBSET_DROP, right);
  }
  prctl(PR_SET_PDEATHSIG, SIGKILL);
}

Seen seenIn(const QByteArray& line) {
  const QJsonObject object = QJsonDocument::fromJson(line).object();
  return {object["done"].toBool(),        static_cast<Operation>(object["operation"].toInt()),
          object["programState"].toInt(), object["status"].toString(),
          object["unsaved"].toBool(),     object["recorded"].toInt(),
          object["dialog"].toString(),    object["text"].toString(),
          object["paints"].toInt(),       object["longestStill"].toInt()};
}

}  // namespace

bool eventually(const std::function<bool()>& condition, int milliseconds) {
  const QDeadlineTimer deadline(milliseconds);
  while (!condition()) {
    if (deadline.hasExpired()) return false;
    poll(nullptr, 0, 10);
  }
  return true;
}

DrivenProgram::DrivenProgram(const QStringList& arguments, const QProcessEnvironment& environment) {
  m_process.setProcessEnvironment(environment);
  m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
  m_process.setChildProcessModifier(becomeUser);
  m_process.start(QCoreApplication::applicationFilePath(), QStringList{kDriven} + arguments);
  m_process.waitForStarted(kPatienceMs);
}

DrivenProgram::~DrivenProgram() {
  m_process.kill();
  m_process.waitForFinished(kPatienceMs);
}

Seen DrivenProgram::tell(const QString& command) {
  m_process.write(command.toUtf8() + '\n');
  while (!m_process.canReadLine()) {
    if (!m_process.waitForReadyRead(kPatienceMs)) return {};
  }
  return seenIn(m_process.readLine());
}

bool DrivenProgram::sees(const std::function<bool(const Seen&)>& wanted, int milliseconds) {
  return eventually([&] { return running() && wanted(look()); }, milliseconds);
}

bool DrivenProgram::reaches(Operation operation) {
  return sees([operation](const Seen& seen) { return seen.operation == operation; });
}

bool DrivenProgram::opens(const char* dialog, int milliseconds) {
  return sees([dialog](const Seen& seen) { return seen.dialog == dialog; }, milliseconds);
}

void DrivenProgram::signal(int number) {
  ::kill(static_cast<pid_t>(m_process.processId()), number);
}

void DrivenProgram::limitFiles(std::optional<std::uint64_t> bytes) {
  const auto process = static_cast<pid_t>(m_process.processId());
  rlimit limit{};
  prlimit(process, RLIMIT_FSIZE, nullptr, &limit);
  limit.rlim_cur = bytes ? *bytes : limit.rlim_max;
  prlimit(process, RLIMIT_FSIZE, &limit, nullptr);
}

bool DrivenProgram::running() {
  m_process.waitForFinished(0);
  return m_process.state() == QProcess::Running;
}

bool DrivenProgram::endsWell(int milliseconds) {
  return m_process.waitForFinished(milliseconds) &&
         m_process.exitStatus() == QProcess::NormalExit && m_process.exitCode() == 0;
}

}  // namespace qv3::test
