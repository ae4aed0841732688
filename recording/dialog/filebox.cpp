#include "recording/dialog/filebox.h"

#include <QAbstractItemView>
#include <QKeyEvent>
#include <QSignalBlocker>
#include <QStyle>
#include <QStyleOptionComboBox>
#include <QWheelEvent>

namespace qv3 {

FileBox::FileBox(QWidget* parent) : QComboBox(parent) {
  setObjectName(QStringLiteral("cboFile"));
  setAccessibleName(tr("Numbered recordings"));
  view()->setAccessibleName(accessibleName());
  setFocusPolicy(Qt::TabFocus);
  setPlaceholderText(QStringLiteral("\u2013"));
  setMaxVisibleItems(20);
  connect(this, &QComboBox::textActivated, this, &FileBox::fileChosen);
}

void FileBox::setFiles(const QStringList& numbers, int current) {
  const QSignalBlocker quiet(this);
  clear();
  addItems(numbers);
  setCurrentIndex(current);
}

/// As wide as its three digits need, whatever is in it.
QSize FileBox::sizeHint() const {
  const QFontMetrics metrics = fontMetrics();
  QStyleOptionComboBox option;
  initStyleOption(&option);
  const QSize content(metrics.horizontalAdvance(QStringLiteral("000")), metrics.height() + 2);
  return style()->sizeFromContents(QStyle::CT_ComboBox, &option, content, this);
}

void FileBox::keyPressEvent(QKeyEvent* event) {
  switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_F4:
      showPopup();
      return;
    case Qt::Key_Down:
    case Qt::Key_Up:
      if (event->modifiers().testFlag(Qt::AltModifier)) {
        showPopup();
        return;
      }
      break;
    default:
      break;
  }
  event->ignore();
}

void FileBox::wheelEvent(QWheelEvent* event) {
  event->ignore();
}

}  // namespace qv3
