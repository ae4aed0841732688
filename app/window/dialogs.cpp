#include "app/window/dialogs.h"

#include <QLabel>
#include <algorithm>
#include <utility>

namespace qv3 {
namespace {

QString kindOf(QMessageBox::Icon icon) {
  switch (icon) {
    case QMessageBox::Critical:
      return QObject::tr("Error");
    case QMessageBox::Warning:
      return QObject::tr("Warning");
    default:
      return QObject::tr("Question");
  }
}

std::unique_ptr<QMessageBox> box(const Notice& notice, QMessageBox::Icon icon,
                                 QMessageBox::StandardButtons buttons, QWidget& window) {
  auto made = std::make_unique<QMessageBox>(icon, notice.title, notice.text, buttons, &window);
  made->setObjectName(notice.name);
  made->setTextFormat(Qt::PlainText);
  // A command in it can be copied.
  made->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  // The toolkit leaves the picture of the kind without words.
  if (auto* picture = made->findChild<QLabel*>(QStringLiteral("qt_msgboxex_icon_label"))) {
    picture->setAccessibleName(kindOf(icon));
  }
  return made;
}

/// The toolkit says in boxes of its own what is wrong with a file's name, each in a loop that only
/// the box's answer ends.
void rejectBoxesOver(const QDialog& dialog) {
  for (QDialog* box : dialog.findChildren<QDialog*>()) {
    if (box->isVisible()) box->reject();
  }
}

}  // namespace

Dialogs::~Dialogs() {
  for (const auto& dialog : std::exchange(m_open, {})) {
    if (!dialog) continue;
    dialog->disconnect();
    delete dialog;
  }
}

void Dialogs::error(const Notice& notice, std::function<void()> then) {
  open(box(notice, QMessageBox::Critical, QMessageBox::Ok, m_window),
       [then = std::move(then)](bool) { then(); });
}

void Dialogs::warning(const Notice& notice, std::function<void()> then) {
  open(box(notice, QMessageBox::Warning, QMessageBox::Ok, m_window),
       [then = std::move(then)](bool) { then(); });
}

void Dialogs::question(const Notice& notice, std::function<void(bool)> then,
                       QMessageBox::StandardButton enter) {
  auto asked = box(notice, QMessageBox::Question, QMessageBox::Yes | QMessageBox::No, m_window);
  asked->setDefaultButton(enter);
  open(std::move(asked), std::move(then));
}

void Dialogs::choice(const Notice& notice, const QStringList& answers,
                     std::function<void(int)> then) {
  auto asked = box(notice, QMessageBox::Question, QMessageBox::NoButton, m_window);
  QMessageBox* shown = asked.get();
  for (const QString& answer : answers) shown->addButton(answer, QMessageBox::ActionRole);
  shown->setEscapeButton(shown->buttons().last());
  const int last = static_cast<int>(answers.size()) - 1;
  open(std::move(asked), [shown, silent = m_silent, last, then = std::move(then)](bool) {
    const auto pressed = silent ? -1 : shown->buttons().indexOf(shown->clickedButton());
    then(pressed < 0 ? last : static_cast<int>(pressed));
  });
}

void Dialogs::retry(const Notice& notice, std::function<void(bool)> then) {
  open(box(notice, QMessageBox::Critical, QMessageBox::Retry | QMessageBox::Cancel, m_window),
       std::move(then));
}

void Dialogs::open(std::unique_ptr<QDialog> dialog, std::function<void(bool)> then) {
  if (m_silent) {
    then(false);
    return;
  }
  QDialog* shown = dialog.release();  // deletes itself once it was answered
  m_open.emplace_back(shown);
  QObject::connect(shown, &QDialog::finished, shown,
                   [this, shown, then = std::move(then)](int result) {
                     std::erase(m_open, shown);
                     shown->deleteLater();
                     then(result == QDialog::Accepted || result == QMessageBox::Yes ||
                          result == QMessageBox::Retry);
                   });
  shown->open();
  // A box that no click led to would else come up without the focus.
  shown->activateWindow();
}

bool Dialogs::anyOpen() const {
  return !m_open.empty();
}

void Dialogs::silence() {
  m_silent = true;
  while (!m_open.empty()) {
    const QPointer<QDialog> dialog = m_open.back();
    m_open.pop_back();
    if (!dialog) continue;
    rejectBoxesOver(*dialog);
    dialog->reject();
  }
}

}  // namespace qv3
