#include "recording/dialog/recordingsetup.h"

#include <QCloseEvent>
#include <QDir>
#include <QFileDialog>
#include <QFocusEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QScreen>
#include <QVBoxLayout>
#include <utility>

#include "measure/numbers.h"
#include "recording/naming.h"
#include "recording/recordmodes.h"

namespace qv3 {
namespace {

constexpr int kNumeric = 0;
constexpr int kPanelHeight = 83;

template <class T>
T* named(T* control, const char* name) {
  control->setObjectName(QLatin1String(name));
  return control;
}

/// A label that is hidden keeps its room, so that nothing moves when it comes and goes.
void keepRoom(QWidget* widget) {
  QSizePolicy policy = widget->sizePolicy();
  policy.setRetainSizeWhenHidden(true);
  widget->setSizePolicy(policy);
}

std::string folderPath(const QString& folder) {
  QString path = QDir::toNativeSeparators(folder);
  if (!path.isEmpty() && !path.endsWith(QDir::separator())) path += QDir::separator();
  return path.toStdString();
}

void chooseWithToolkit(QDialog& over, const QString& start,
                       const RecordingSetupActions::Chosen& chosen) {
  auto* dialog = named(new QFileDialog(&over, QObject::tr("Select Save Folder"), start), "cdlFile");
  dialog->setFileMode(QFileDialog::Directory);
  dialog->setOption(QFileDialog::ShowDirsOnly);
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  QObject::connect(dialog, &QFileDialog::fileSelected, &over, chosen);
  dialog->open();
}

}  // namespace

RecordingSetup::RecordingSetup(ProgramSettings& settings, RecordingSetupActions actions,
                               QWidget* parent)
    : QDialog(parent), m_settings(settings), m_actions(std::move(actions)) {
  named(this, "frmRec");
  setWindowTitle(tr("Recording Setup"));
  if (!m_actions.chooseFolder) m_actions.chooseFolder = chooseWithToolkit;
  auto* grid = new QGridLayout(this);
  grid->addWidget(makeModes(), 0, 0);
  grid->addWidget(makeNaming(), 0, 1);
  grid->addLayout(makeFolder(), 1, 0, 1, 2);
  grid->addLayout(makeButtons(), 2, 0, 1, 2);
  grid->setColumnStretch(1, 1);
  grid->setRowStretch(0, 1);
  connectControls();
  fill();
  m_filling = false;
}

QRadioButton* RecordingSetup::makeOption(const char* group, int index, const QString& caption) {
  auto* option = new QRadioButton(caption);
  option->setObjectName(QStringLiteral("%1_%2").arg(QLatin1String(group)).arg(index));
  return option;
}

QGroupBox* RecordingSetup::makeModes() {
  auto* group = named(new QGroupBox(tr("Save Mode")), "framSaveMode");
  auto* column = new QVBoxLayout(group);
  const std::array<std::pair<QString, QString>, 4> modes = {{
      {},
      {tr("Manual"), tr("Maunually name and save")},
      {tr("Auto Name"), tr("Auto name and manually save")},
      {tr("Auto Save"), tr("Auto name and auto save")},
  }};
  for (const int mode : {3, 2, 1}) {
    const auto& [caption, tip] = modes[static_cast<std::size_t>(mode)];
    QRadioButton* option = makeOption("optRecMode", mode, caption);
    option->setToolTip(tip);
    column->addWidget(option);
    optRecMode[static_cast<std::size_t>(mode)] = option;
  }
  column->addStretch();
  chkTimeDate = named(new QCheckBox(tr("Include Time and Date")), "chkTimeDate");
  chkRecPrompt = named(new QCheckBox(tr("Warn me about unsaved recordings")), "chkRecPrompt");
  column->addWidget(chkTimeDate);
  column->addWidget(chkRecPrompt);
  return group;
}

QGroupBox* RecordingSetup::makeNaming() {
  auto* group = named(new QGroupBox(tr("File Name")), "Frame1");
  auto* grid = new QGridLayout(group);
  auto* prefixLabel = named(new QLabel(tr("Filename prefix")), "lblPrefix");
  txtPrefix = named(new QLineEdit, "txtPrefix");
  txtPrefix->setMinimumWidth(fontMetrics().averageCharWidth() * 24);
  txtPrefix->installEventFilter(this);
  prefixLabel->setBuddy(txtPrefix);
  optSuffixType = {makeOption("optSuffixType", 0, tr("Numeric suffix")),
                   makeOption("optSuffixType", 1, tr("Date/Time suffix"))};
  lblSuffixNum = named(new QLabel(QStringLiteral("001")), "lblSuffixNum");
  lblSuffixNum->setAccessibleName(tr("Next number"));
  cmdReset = named(new QPushButton(tr("Reset")), "cmdReset");
  cmdReset->setAutoDefault(false);
  lblWarning = named(new QLabel(tr("Warning..Reset may delete files!")), "lblWarning");
  keepRoom(lblSuffixNum);
  keepRoom(lblWarning);
  grid->addWidget(prefixLabel, 0, 0, 1, 3);
  grid->addWidget(txtPrefix, 1, 0, 1, 3);
  grid->addWidget(optSuffixType[0], 2, 0);
  grid->addWidget(lblSuffixNum, 2, 1);
  grid->addWidget(cmdReset, 2, 2);
  grid->addWidget(optSuffixType[1], 3, 0, 1, 3);
  grid->addWidget(lblWarning, 4, 0, 1, 3);
  grid->setColumnStretch(1, 1);
  grid->setRowStretch(5, 1);
  return group;
}

QLayout* RecordingSetup::makeFolder() {
  auto* row = new QHBoxLayout;
  row->addWidget(named(new QLabel(tr("Save to Folder:")), "Label1"));
  lblSavePath = new ElidedLabel("lblSavePath", this, Qt::ElideMiddle);
  lblSavePath->setAccessibleName(tr("Save folder"));
  lblSavePath->setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
  lblSavePath->setMargin(3);
  row->addWidget(lblSavePath, 1);
  cmdBrowseSaveFolder = named(new QPushButton(tr("Browse")), "cmdBrowseSaveFolder");
  cmdBrowseSaveFolder->setAutoDefault(false);
  row->addWidget(cmdBrowseSaveFolder);
  return row;
}

QLayout* RecordingSetup::makeButtons() {
  auto* row = new QHBoxLayout;
  row->addStretch();
  auto* ok = named(new QPushButton(tr("OK"), this), "cmdOK");
  ok->setAutoDefault(false);
  ok->hide();
  cmdClose = named(new QPushButton(tr("Close")), "cmdClose");
  cmdClose->setDefault(true);
  row->addWidget(cmdClose);
  return row;
}

void RecordingSetup::connectControls() {
  for (const int mode : {1, 2, 3}) {
    connect(optRecMode[static_cast<std::size_t>(mode)], &QRadioButton::toggled, this,
            [this, mode](bool checked) {
              if (checked) modeClicked(mode);
            });
  }
  for (const int type : {0, 1}) {
    connect(optSuffixType[static_cast<std::size_t>(type)], &QRadioButton::toggled, this,
            [this, type](bool checked) {
              if (checked) suffixClicked(type);
            });
  }
  connect(chkTimeDate, &QCheckBox::clicked, this, [this](bool checked) {
    m_settings.TimeDateEnable = checked;
    tell("TimeDateEnable");
  });
  connect(chkRecPrompt, &QCheckBox::clicked, this, [this](bool checked) {
    m_settings.RecPromptEnable = checked;
    tell("RecPromptEnable");
  });
  connect(cmdReset, &QPushButton::clicked, this, &RecordingSetup::Reset);
  connect(cmdBrowseSaveFolder, &QPushButton::clicked, this, &RecordingSetup::Browse);
  connect(cmdClose, &QPushButton::clicked, this, &RecordingSetup::closeChecked);
}

/// Selecting the present options runs their rules.
void RecordingSetup::fill() {
  const bool folder = !m_settings.SavePath.empty();
  m_rules = SetupRules::opened(folder);
  if (!folder && m_settings.RecordingMode != kManualMode) {
    m_settings.RecordingMode = kManualMode;
    tell("RecordingMode");
  }
  lblSavePath->setValue(QString::fromStdString(m_settings.SavePath));
  lblSavePath->setToolTip(lblSavePath->text());
  chkRecPrompt->setChecked(m_settings.RecPromptEnable);
  chkTimeDate->setChecked(m_settings.TimeDateEnable);
  LastGoodPrefix = QString::fromStdString(m_settings.SavePrefix);
  txtPrefix->setText(LastGoodPrefix);
  const auto type = static_cast<std::size_t>(m_settings.SuffixType);
  if (type < optSuffixType.size()) optSuffixType[type]->setChecked(true);
  const auto mode = static_cast<std::size_t>(m_settings.RecordingMode);
  if (mode < optRecMode.size() && optRecMode[mode] != nullptr) optRecMode[mode]->setChecked(true);
  showNumber();
  showRules();
}

void RecordingSetup::modeClicked(int mode) {
  m_rules.modeClicked(mode, optSuffixType[kNumeric]->isChecked(), m_settings.SuffixNum);
  if (m_filling) return;
  m_settings.RecordingMode = mode;
  showRules();
  tell("RecordingMode");
}

void RecordingSetup::suffixClicked(int type) {
  m_rules.suffixClicked(type, m_settings.SuffixNum);
  if (m_filling) return;
  m_settings.SuffixType = type;
  showRules();
  tell("SuffixType");
}

void RecordingSetup::Reset() {
  m_settings.SuffixNum = 1;
  m_rules.numberReset();
  showNumber();
  showRules();
  tell("SuffixNum");
  if (m_settings.SavePath.empty() || !m_actions.removeNumbered) return;
  m_actions.removeNumbered(m_settings.SavePath, m_settings.SavePrefix);
}

void RecordingSetup::Browse() {
  const QPointer<RecordingSetup> alive(this);
  const QString set = lblSavePath->text();
  const QString start = m_actions.usableFolder ? m_actions.usableFolder(set) : set;
  m_actions.chooseFolder(*this, start, [alive](const QString& folder) {
    if (alive) alive->folderChosen(folder);
  });
}

void RecordingSetup::folderChosen(const QString& folder) {
  if (folder.isEmpty()) return;
  m_settings.SavePath = folderPath(folder);
  lblSavePath->setValue(QString::fromStdString(m_settings.SavePath));
  lblSavePath->setToolTip(lblSavePath->text());
  m_rules.folderChosen(true);
  showRules();
  tell("SavePath");
}

/// Whether the text in the box is the prefix now. No file is touched to find out.
bool RecordingSetup::prefixAccepted() {
  const QString text = txtPrefix->text();
  if (text == LastGoodPrefix) return true;
  const std::string prefix = text.toStdString();
  if (checkPrefix(prefix) != PrefixFault::None) {
    refusePrefix();
    return false;
  }
  LastGoodPrefix = text;
  m_settings.SavePrefix = prefix;
  tell("SavePrefix");
  Reset();
  return true;
}

void RecordingSetup::refusePrefix() {
  txtPrefix->setText(LastGoodPrefix);
  // The box takes the release of the button that is being pressed.
  for (QAbstractButton* button : findChildren<QAbstractButton*>()) button->setDown(false);
  m_refusal = named(new QMessageBox(QMessageBox::Critical, tr("Validate Filename"),
                                    tr("Error: Invalid Prefix name "), QMessageBox::Ok, this),
                    "msgInvalidPrefix");
  m_refusal->setTextFormat(Qt::PlainText);
  if (auto* picture = m_refusal->findChild<QLabel*>(QStringLiteral("qt_msgboxex_icon_label"))) {
    picture->setAccessibleName(tr("Error"));
  }
  m_refusal->setAttribute(Qt::WA_DeleteOnClose);
  connect(m_refusal, &QDialog::finished, txtPrefix, [this] {
    txtPrefix->setFocus();
    txtPrefix->selectAll();
  });
  m_refusal->open();
}

/// Another window in front, or the box's own menu, is no leaving.
bool RecordingSetup::eventFilter(QObject* watched, QEvent* event) {
  if (watched == txtPrefix && event->type() == QEvent::FocusOut) {
    const Qt::FocusReason reason = static_cast<QFocusEvent*>(event)->reason();
    const bool stays = reason == Qt::ActiveWindowFocusReason || reason == Qt::PopupFocusReason ||
                       reason == Qt::MenuBarFocusReason;
    if (!stays) prefixAccepted();
  }
  return QDialog::eventFilter(watched, event);
}

void RecordingSetup::closeChecked() {
  const bool refusing = m_refusal != nullptr && m_refusal->isVisible();
  if (!refusing && prefixAccepted()) accept();
}

void RecordingSetup::done(int result) {
  if (m_refusal != nullptr) m_refusal->close();
  QDialog::done(result);
}

void RecordingSetup::closeEvent(QCloseEvent* event) {
  event->ignore();
  closeChecked();
  if (!isVisible()) event->accept();
}

void RecordingSetup::keyPressEvent(QKeyEvent* event) {
  if (event->matches(QKeySequence::Cancel)) {
    closeChecked();
  } else {
    QDialog::keyPressEvent(event);
  }
}

void RecordingSetup::showEvent(QShowEvent* event) {
  QDialog::showEvent(event);
  if (event->spontaneous() || parentWidget() == nullptr) return;
  const QWidget& main = *parentWidget()->window();
  const QRect screen = main.screen()->availableGeometry();
  const QSize size = frameGeometry().size();
  const QPoint wanted = placeOver(main.frameGeometry(), size);
  move(qMax(screen.left(), qMin(wanted.x(), screen.right() + 1 - size.width())),
       qMax(screen.top(), qMin(wanted.y(), screen.bottom() + 1 - size.height())));
}

QPoint RecordingSetup::placeOver(const QRect& mainWindow, const QSize& dialog) {
  return {mainWindow.left() + mainWindow.width() / 2 - dialog.width() / 2,
          mainWindow.top() + mainWindow.height() - dialog.height() - kPanelHeight};
}

void RecordingSetup::showRules() {
  optRecMode[2]->setEnabled(m_rules.automaticModes);
  optRecMode[3]->setEnabled(m_rules.automaticModes);
  for (QRadioButton* option : optSuffixType) option->setEnabled(m_rules.suffixTypes);
  cmdReset->setEnabled(m_rules.reset);
  chkRecPrompt->setEnabled(m_rules.prompt);
  lblSuffixNum->setVisible(m_rules.numberShown);
  lblWarning->setVisible(m_rules.numberShown);
}

void RecordingSetup::showNumber() {
  lblSuffixNum->setText(QString::fromStdString(formatThreeDigits(m_settings.SuffixNum)));
  lblSuffixNum->setAccessibleDescription(lblSuffixNum->text());
}

void RecordingSetup::tell(std::string_view key) const {
  if (m_actions.changed) m_actions.changed(key);
}

}  // namespace qv3
