#pragma once

#include <QCheckBox>
#include <QDialog>
#include <QGroupBox>
#include <QStringList>
#include <functional>
#include <string_view>

#include "settings/programsettings.h"

namespace qv3 {

/// `frmMeter`, Meter Display Setup: dial, scale, clock and date styles. Every click changes the
/// setting at once and there is no way back; what the window shows follows when the dialog closes.
class MeterDialog : public QDialog {
  Q_OBJECT

 public:
  /// `settings` must outlive the dialog. `changed` hears the key of each setting that was clicked.
  MeterDialog(ProgramSettings& settings, std::function<void(std::string_view key)> changed,
              QWidget* parent = nullptr);

 private:
  using Clicked = std::function<void(int index)>;

  /// A frame of option buttons named OPTION_0, OPTION_1, ..., the present one selected.
  QGroupBox* addGroup(const char* name, const QString& caption, const char* option,
                      const QStringList& captions, int selected, Clicked clicked);
  QGroupBox* addClock();
  void dialClicked(int index);
  void scaleClicked(int index);
  void clockClicked(int index);
  void dateClicked(int index);

  ProgramSettings& m_settings;
  std::function<void(std::string_view)> m_changed;
  bool Loading = true;
  QGroupBox* framDate = nullptr;
};

}  // namespace qv3
