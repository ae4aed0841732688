#pragma once

#include <QAbstractButton>
#include <QLabel>

namespace qv3 {

/// A line of plain text that is never cut through: it gets a little smaller where it would be too
/// wide, then ends in dots.
class ElidedLabel : public QLabel {
  Q_OBJECT

 public:
  ElidedLabel(const char* name, QWidget* parent, Qt::TextElideMode mode = Qt::ElideRight);

  /// From now on the text is as high as the label, as far as `longest` has room in it; a read-out
  /// of changing length so keeps its size.
  void setFill(const QString& longest);

  /// Also what assistive technology is told.
  void setValue(const QString& text);

  QSize minimumSizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QRect textArea() const;
  QFont fittingFont() const;

  Qt::TextElideMode m_mode;
  QString m_longest;
};

/// The name of the loaded session, which is also the button to save it under another name. It stays
/// readable while it cannot be pressed.
class LoadedFileLabel : public QAbstractButton {
  Q_OBJECT

 public:
  explicit LoadedFileLabel(QWidget* parent);

  /// A name as it is, "&" included.
  void setName(const QString& name);

  QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
};

}  // namespace qv3
