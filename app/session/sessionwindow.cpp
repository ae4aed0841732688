#include "app/session/sessionwindow.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QTimer>
#include <memory>
#include <utility>

#include "recording/dialog/recordingsetup.h"
#include "recording/savetarget.h"

namespace qv3 {
namespace {

QString text(const std::string& utf8) {
  return QString::fromStdString(utf8);
}

Notice notice(const SessionNotice& from) {
  return {text(from.name), text(from.title), text(from.text)};
}

/// The toolkit's spelling of "QVD file (*.qvd*)|*.qvd".
QString toolkitFilter(const std::string& filter) {
  return text(filter.substr(0, filter.find('|')));
}

}  // namespace

void SessionWindow::refreshTransport() {
  clearSavePathThatIsGone();
  m_parts.refreshMenus();
}

/// The record-mode label shows where recordings go; a folder that is gone is forgotten with it.
void SessionWindow::clearSavePathThatIsGone() {
  std::string& path = m_parts.settings.SavePath;
  if (!path.empty() && !m_parts.files.isFolder(path)) path.clear();
}

void SessionWindow::showLoadedFile(const std::string& label, const std::string& toolTip) {
  m_parts.panel.setLoadedFile(text(label), text(toolTip));
}

void SessionWindow::showTag(const std::string& label) {
  m_parts.panel.setTag(text(label));
}

void SessionWindow::showPlayTime(std::int64_t seconds) {
  m_parts.panel.setPlayTime(seconds);
}

void SessionWindow::showTotalTime(std::optional<std::int64_t> seconds) {
  m_parts.panel.setTotalTime(seconds);
}

void SessionWindow::showBar(const BarState& bar) {
  FilePositionBar& shown = m_parts.panel.bar();
  switch (bar.face) {
    case BarFace::Clear:
      shown.clear();
      break;
    case BarFace::Recording:
      shown.showRecording();
      break;
    case BarFace::Work:
      shown.showWork(bar.place.value_or(0) / BarGeometry::kWidth);
      break;
    case BarFace::Range:
      if (bar.place) {
        shown.showPlayback(bar.range.from, bar.range.to, *bar.place);
      } else {
        shown.showRange(bar.range.from, bar.range.to, bar.shortest);
      }
      break;
  }
}

void SessionWindow::showClock(const std::optional<SessionClock>& clock) {
  m_parts.display.setSessionClock(clock);
}

void SessionWindow::hideClock() {
  m_parts.display.hideClock();
}

void SessionWindow::showNumberedFiles(const std::vector<std::string>& numbers, int current) {
  QStringList list;
  for (const std::string& number : numbers) list << text(number);
  m_parts.panel.setNumberedFiles(list, current);
}

/// From the event loop: a box may be wanted in the midst of a timer or a receive event.
void SessionWindow::ask(const SessionNotice& question, Answer answer) {
  QTimer::singleShot(0, &m_parts.panel, [this, question, answer = std::move(answer)] {
    m_parts.dialogs.question(notice(question),
                             [this, answer](bool yes) { told([&] { answer(yes); }); });
  });
}

void SessionWindow::tell(const SessionNotice& said, std::function<void()> then) {
  QTimer::singleShot(0, &m_parts.panel, [this, said, then = std::move(then)] {
    m_parts.dialogs.warning(notice(said), [this, then] {
      if (then) told(then);
    });
  });
}

void SessionWindow::chooseSaveFile(const FileChoice& choice, Chosen chosen) {
  chooseFile(choice, true, std::move(chosen));
}

void SessionWindow::chooseLoadFile(const FileChoice& choice, Chosen chosen) {
  chooseFile(choice, false, std::move(chosen));
}

void SessionWindow::chooseFile(const FileChoice& choice, bool save, Chosen chosen) {
  auto dialog = std::make_unique<QFileDialog>(&m_parts.dialogs.window(), text(choice.title),
                                              m_parts.usableFolder(text(choice.folder), !save),
                                              toolkitFilter(choice.filter));
  dialog->setObjectName(text(choice.name));
  dialog->setAcceptMode(save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
  dialog->setFileMode(save ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
  // The question about files in the way is ours: it names the sound that goes with them.
  dialog->setOption(QFileDialog::DontConfirmOverwrite);
  if (!choice.fileName.empty()) dialog->selectFile(text(choice.fileName));
  const QFileDialog* chooser = dialog.get();
  m_parts.dialogs.open(
      std::move(dialog), [this, chooser, chosen = std::move(chosen)](bool accepted) {
        const QStringList files = accepted ? chooser->selectedFiles() : QStringList();
        const QString path = files.isEmpty() ? QString() : QFileInfo(files[0]).absoluteFilePath();
        told([&] { chosen(path.toStdString()); });
      });
}

void SessionWindow::openRecordingSetup() {
  RecordingSetupActions actions;
  actions.changed = [this](std::string_view) { m_parts.refreshMenus(); };
  actions.removeNumbered = [this](const std::string& folder, const std::string& prefix) {
    resetNumberedFiles(m_parts.files, {folder, prefix});
  };
  actions.usableFolder = [this](const QString& wanted) {
    return m_parts.usableFolder(wanted, false);
  };
  auto dialog = std::make_unique<RecordingSetup>(m_parts.settings, std::move(actions),
                                                 &m_parts.dialogs.window());
  m_parts.dialogs.open(std::move(dialog), [this](bool) { told([this] { refreshTransport(); }); });
}

}  // namespace qv3
