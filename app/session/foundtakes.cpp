#include "app/session/foundtakes.h"

#include <utility>

#include "recording/naming.h"

namespace qv3 {
namespace {

constexpr std::uint64_t kSamplesPerSecond = 50;

/// Said at every start for as long as the files are there: they may be all that is left of a
/// recording.
Notice unreadable(const std::vector<std::string>& paths) {
  QString text = QStringLiteral(
      "An earlier recording was not saved, and what is left of it cannot be read. Nothing was "
      "changed; if you do not need these files, delete them:\n");
  for (const std::string& path : paths) text += QLatin1Char('\n') + QString::fromStdString(path);
  return {QStringLiteral("msgUnreadable"), QStringLiteral("Recording found"), text};
}

}  // namespace

FoundTakes::FoundTakes(Dialogs& dialogs, Recover recover)
    : m_dialogs(dialogs), m_recover(std::move(recover)) {}

void FoundTakes::offer(LeftBehind found, std::function<void(bool)> then) {
  m_takes = std::move(found.takes);
  m_then = std::move(then);
  if (found.unreadable.empty()) {
    next();
  } else {
    m_dialogs.warning(unreadable(found.unreadable), [this] { next(); });
  }
}

void FoundTakes::next() {
  if (m_takes.empty()) {
    m_then(false);
    return;
  }
  const FoundTake& take = m_takes.back();
  const std::string length =
      formatDuration(static_cast<std::int64_t>(take.samples / kSamplesPerSecond));
  const QString text = QStringLiteral("The recording \"%1\" (%2) was not saved.")
                           .arg(QString::fromStdString(take.name), QString::fromStdString(length));
  m_dialogs.choice({QStringLiteral("msgRecover"), QStringLiteral("Recording found"), text},
                   {QStringLiteral("Recover"), QStringLiteral("Discard"), QStringLiteral("Later")},
                   [this](int answer) { answered(answer); });
}

/// Escape, and a program that is closing, is Later: nothing is touched.
void FoundTakes::answered(int answer) {
  constexpr int kRecover = 0;
  constexpr int kDiscard = 1;
  FoundTake take = std::move(m_takes.back());
  m_takes.pop_back();
  if (answer == kRecover) {
    m_takes.clear();  // one session at a time; the others are offered again
    m_recover(take.read(), std::move(take.journal));
    m_then(true);
    return;
  }
  if (answer == kDiscard) take.journal->remove();
  next();
}

}  // namespace qv3
