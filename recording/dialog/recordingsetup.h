#pragma once

#include <QCheckBox>
#include <QDialog>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <array>
#include <functional>
#include <string>
#include <string_view>

#include "recording/dialog/readouts.h"
#include "recording/setuprules.h"
#include "settings/programsettings.h"

namespace qv3 {

/// What Recording Setup leaves to others.
struct RecordingSetupActions {
  using Chosen = std::function<void(const QString& folder)>;

  /// A setting has another value; hears its key.
  std::function<void(std::string_view key)> changed;
  /// Takes away the recordings in `folder` whose names are `prefix` and three characters. `folder`
  /// is never empty. What goes wrong is not reported.
  std::function<void(const std::string& folder, const std::string& prefix)> removeNumbered;
  /// A folder that exists, where the choice begins, for the one that is set. Without it the set
  /// one.
  std::function<QString(const QString& wanted)> usableFolder;
  /// Asks for a folder over the dialog, beginning at `start`; calls back with what was chosen, and
  /// not at all if nothing was. Without it the toolkit's own dialog asks.
  std::function<void(QDialog& over, const QString& start, Chosen chosen)> chooseFolder;
};

/// `frmRec`, Recording Setup: how recordings are named and where they go. Every change is in the
/// settings at once. A prefix counts when its box is left, and is checked before the dialog closes
/// by its button, by Escape or by the window's own; `reject` and `done` close it without a check.
class RecordingSetup : public QDialog {
  Q_OBJECT

 public:
  /// `settings` must outlive the dialog.
  RecordingSetup(ProgramSettings& settings, RecordingSetupActions actions,
                 QWidget* parent = nullptr);

  /// Where a dialog of this size opens: in the middle of the main window, its lower edge above the
  /// recording panel.
  static QPoint placeOver(const QRect& mainWindow, const QSize& dialog);

  void done(int result) override;

 protected:
  void showEvent(QShowEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  QGroupBox* makeModes();
  QGroupBox* makeNaming();
  QLayout* makeFolder();
  QLayout* makeButtons();
  QRadioButton* makeOption(const char* group, int index, const QString& caption);
  void fill();
  void connectControls();

  void modeClicked(int mode);
  void suffixClicked(int type);
  void Reset();
  void Browse();
  void folderChosen(const QString& folder);
  void closeChecked();
  bool prefixAccepted();
  void refusePrefix();
  void showRules();
  void showNumber();
  void tell(std::string_view key) const;

  ProgramSettings& m_settings;
  RecordingSetupActions m_actions;
  SetupRules m_rules;
  QString LastGoodPrefix;
  bool m_filling = true;
  QPointer<QMessageBox> m_refusal;

  std::array<QRadioButton*, 4> optRecMode{};  ///< 1 to 3
  std::array<QRadioButton*, 2> optSuffixType{};
  QCheckBox* chkTimeDate = nullptr;
  QCheckBox* chkRecPrompt = nullptr;
  QLineEdit* txtPrefix = nullptr;
  QLabel* lblSuffixNum = nullptr;
  QLabel* lblWarning = nullptr;
  QPushButton* cmdReset = nullptr;
  ElidedLabel* lblSavePath = nullptr;
  QPushButton* cmdBrowseSaveFolder = nullptr;
  QPushButton* cmdClose = nullptr;
};

}  // namespace qv3
