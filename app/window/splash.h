#pragma once

#include <QLabel>
#include <QWidget>

namespace qv3 {

/// "Version 1.0.0".
QString versionText();

/// The window shown while the program starts.
class Splash : public QWidget {
 public:
  Splash();

  void showStatus(const QString& text);

 private:
  QLabel* m_status;
};

}  // namespace qv3
