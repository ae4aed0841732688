#pragma once

#include <QComboBox>
#include <QStringList>

namespace qv3 {

/// `cboFile`, the numbered files beside the loaded one. Choosing an entry loads a file, so nothing
/// chooses one by accident: no wheel, no letters and no arrows while the list is closed; Return
/// opens it.
class FileBox : public QComboBox {
  Q_OBJECT

 public:
  explicit FileBox(QWidget* parent);

  /// `current` is selected, which chooses nothing; -1 is none.
  void setFiles(const QStringList& numbers, int current);

  QSize sizeHint() const override;

 signals:
  void fileChosen(const QString& number);

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
};

}  // namespace qv3
