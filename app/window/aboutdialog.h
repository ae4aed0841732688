#pragma once

#include <QDialog>
#include <functional>

#include "link/identification.h"

namespace qv3 {

/// `frmAbout`: which program this is, and what the meter connected last said of itself.
class AboutDialog : public QDialog {
 public:
  /// `systemInfo` is called when System Info is pressed.
  AboutDialog(const MeterIdentity& meter, std::function<void()> systemInfo, QWidget* parent);
};

}  // namespace qv3
