#include "app/session/foundtakes.h"

#include <utility>

#include "recording/naming.h"

namespace qv3 {
namespace {

constexpr std::uint64_t kSamplesPerSecond = 50;

}  // namespace

FoundTakes::FoundTakes(Dialogs& dialogs, Recover recover)
    : m_dialogs(dialogs), m_recover(std::move(recover)) {}

void FoundTakes::offer(std::vector<FoundTake> takes, std::function<void(bool)> then) {
  m_takes = std::move(takes);
  m_then = std::move(then);
  next();
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
