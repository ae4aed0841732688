#include "recording/dialog/recordingsetup.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QFocusEvent>
#include <QTest>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace qv3 {
namespace {

class RecordingSetupTest : public testing::Test {
 protected:
  RecordingSetupTest() {
    m_settings.SavePath = "/takes/";
    m_settings.SavePrefix = "Prefix_";
    m_settings.RecordingMode = 2;
    m_settings.SuffixType = 0;
    m_settings.SuffixNum = 7;
    m_settings.RecPromptEnable = true;
  }

  RecordingSetup& open() {
    RecordingSetupActions actions;
    actions.changed = [this](std::string_view key) { m_changed.emplace_back(key); };
    actions.removeNumbered = [this](const std::string& folder, const std::string& prefix) {
      m_removed.push_back(folder + prefix);
    };
    actions.chooseFolder = [this](QDialog&, const QString& start,
                                  RecordingSetupActions::Chosen chosen) {
      m_start = start;
      m_chosen = std::move(chosen);
    };
    m_dialog = std::make_unique<RecordingSetup>(m_settings, std::move(actions));
    m_dialog->show();
    QApplication::setActiveWindow(m_dialog.get());
    return *m_dialog;
  }

  template <class T = QWidget>
  T* part(const char* name) {
    T* found = m_dialog->findChild<T*>(QLatin1String(name));
    if (found == nullptr) ADD_FAILURE() << name;
    return found;
  }
  bool on(const char* name) { return part(name)->isEnabled(); }
  bool shown(const char* name) { return part(name)->isVisible(); }
  std::string text(const char* name) {
    return part(name)->property("text").toString().toStdString();
  }
  void click(const char* name) { part<QAbstractButton>(name)->click(); }

  /// Types a prefix and leaves the box.
  void enterPrefix(const char* prefix) {
    part("txtPrefix")->setFocus();
    part<QLineEdit>("txtPrefix")->setText(QString::fromUtf8(prefix));
    part("cmdClose")->setFocus();
  }
  QMessageBox* refusal() { return m_dialog->findChild<QMessageBox*>("msgInvalidPrefix"); }

  ProgramSettings m_settings;
  std::vector<std::string> m_changed;
  std::vector<std::string> m_removed;
  QString m_start;
  RecordingSetupActions::Chosen m_chosen;
  std::unique_ptr<RecordingSetup> m_dialog;
};

TEST_F(RecordingSetupTest, OpensWithWhatIsSet) {
  open();
  EXPECT_EQ(m_dialog->objectName(), "frmRec");
  EXPECT_EQ(m_dialog->windowTitle(), "Recording Setup");
  EXPECT_TRUE(part<QRadioButton>("optRecMode_2")->isChecked());
  EXPECT_TRUE(part<QRadioButton>("optSuffixType_0")->isChecked());
  EXPECT_TRUE(part<QCheckBox>("chkRecPrompt")->isChecked());
  EXPECT_FALSE(part<QCheckBox>("chkTimeDate")->isChecked());
  EXPECT_EQ(text("lblSuffixNum"), "007");
  EXPECT_EQ(text("lblWarning"), "Warning..Reset may delete files!");
  EXPECT_EQ(text("lblSavePath"), "/takes/");
  EXPECT_EQ(text("txtPrefix"), "Prefix_");
  EXPECT_EQ(part("optRecMode_1")->toolTip(), "Maunually name and save");
  EXPECT_TRUE(on("cmdReset") && shown("lblSuffixNum") && shown("lblWarning"));
  EXPECT_FALSE(shown("cmdOK"));
  EXPECT_TRUE(m_changed.empty()) << "opening changes nothing";
}

TEST_F(RecordingSetupTest, WithoutAFolderOnlyManualIsLeft) {
  for (const int mode : {1, 2, 3, 4}) {
    for (const char* folder : {"", "/takes/"}) {
      m_settings.SavePath = folder;
      m_settings.RecordingMode = mode;
      open();
      const bool any = !m_settings.SavePath.empty();
      EXPECT_EQ(part<QRadioButton>("optRecMode_1")->isChecked(), !any || mode == 1) << mode;
      EXPECT_EQ(on("optRecMode_2") && on("optRecMode_3"), any) << mode;
      EXPECT_EQ(on("optSuffixType_0"), any && (mode == 2 || mode == 3)) << mode;
      click("cmdClose");
      EXPECT_EQ(m_settings.RecordingMode, any ? mode : 1) << "until another one is clicked";
    }
  }
}

TEST_F(RecordingSetupTest, ClicksAreSettingsAtOnce) {
  open();
  click("optRecMode_3");
  EXPECT_EQ(m_settings.RecordingMode, 3);
  EXPECT_FALSE(on("chkRecPrompt"));
  click("optSuffixType_1");
  EXPECT_EQ(m_settings.SuffixType, 1);
  EXPECT_FALSE(shown("lblSuffixNum") || shown("lblWarning") || on("cmdReset"));
  click("optRecMode_1");
  EXPECT_EQ(m_settings.RecordingMode, 1);
  click("chkTimeDate");
  EXPECT_TRUE(m_settings.TimeDateEnable);
  click("chkRecPrompt");
  EXPECT_FALSE(m_settings.RecPromptEnable);
  EXPECT_EQ(m_changed, (std::vector<std::string>{"RecordingMode", "SuffixType", "RecordingMode",
                                                 "TimeDateEnable", "RecPromptEnable"}));
}

TEST_F(RecordingSetupTest, ResetAndANewPrefixThatIsValidStartTheNumbersAgain) {
  open();
  click("cmdReset");
  EXPECT_EQ(m_settings.SuffixNum, 1);
  EXPECT_EQ(text("lblSuffixNum"), "001");
  EXPECT_FALSE(on("cmdReset"));
  m_settings.SuffixNum = 4;
  enterPrefix("Take_");
  EXPECT_EQ(m_settings.SavePrefix, "Take_");
  EXPECT_EQ(m_settings.SuffixNum, 1);
  EXPECT_EQ(m_removed, (std::vector<std::string>{"/takes/Prefix_", "/takes/Take_"}));
  m_settings.SuffixNum = 4;
  enterPrefix("Take_");
  EXPECT_EQ(m_settings.SuffixNum, 4) << "the same prefix restarts nothing";
  m_settings.SavePath.clear();
  enterPrefix("Other_");
  EXPECT_EQ(m_settings.SavePrefix, "Other_");
  EXPECT_EQ(m_removed.size(), 2U) << "without a folder nothing is removed";
  enterPrefix("what?");
  ASSERT_NE(refusal(), nullptr);
  EXPECT_EQ(refusal()->windowTitle(), "Validate Filename");
  EXPECT_EQ(refusal()->text(), "Error: Invalid Prefix name ");
  EXPECT_EQ(refusal()->icon(), QMessageBox::Critical);
  EXPECT_EQ(text("txtPrefix"), "Other_") << "the last good one";
  EXPECT_EQ(m_settings.SavePrefix, "Other_");
}

TEST_F(RecordingSetupTest, AnotherWindowInFrontIsNoLeavingNorIsAClosingFromOutside) {
  for (const char* prefix : {"a|b", "Ta"}) {
    open();
    part("txtPrefix")->setFocus();
    part<QLineEdit>("txtPrefix")->setText(prefix);
    for (const auto reason : {Qt::ActiveWindowFocusReason, Qt::PopupFocusReason}) {
      QFocusEvent away(QEvent::FocusOut, reason);
      QApplication::sendEvent(part("txtPrefix"), &away);
    }
    EXPECT_EQ(refusal(), nullptr);
    m_dialog->reject();
    EXPECT_FALSE(m_dialog->isVisible());
    EXPECT_EQ(refusal(), nullptr);
    EXPECT_EQ(m_settings.SavePrefix, "Prefix_");
    EXPECT_TRUE(m_removed.empty());
  }
}

TEST_F(RecordingSetupTest, EveryWayToCloseChecksTheTypedPrefixFirst) {
  struct Row {
    const char* name;
    void (*close)(RecordingSetup&);
  };
  const Row rows[] = {
      {"Close", [](auto& d) { d.template findChild<QPushButton*>("cmdClose")->click(); }},
      {"Escape", [](auto& d) { QTest::keyClick(&d, Qt::Key_Escape); }},
      {"Return",
       [](auto& d) { QTest::keyClick(d.template findChild<QLineEdit*>(), Qt::Key_Return); }},
      {"the window's own", [](auto& d) { d.close(); }},
  };
  for (const Row& row : rows) {
    RecordingSetup& dialog = open();
    const std::string before = m_settings.SavePrefix;
    part<QLineEdit>("txtPrefix")->setText("a|b");
    row.close(dialog);
    EXPECT_TRUE(dialog.isVisible()) << row.name;
    ASSERT_NE(refusal(), nullptr) << row.name;
    EXPECT_EQ(m_settings.SavePrefix, before) << row.name;
    refusal()->accept();

    part<QLineEdit>("txtPrefix")->setText(row.name);
    row.close(dialog);
    EXPECT_FALSE(dialog.isVisible()) << row.name;
    EXPECT_EQ(m_settings.SavePrefix, row.name);
  }
}

TEST_F(RecordingSetupTest, BrowseTakesAFolderAndAllowsTheAutomaticModes) {
  m_settings.SavePath.clear();
  open();
  click("cmdBrowseSaveFolder");
  m_chosen({});
  EXPECT_EQ(m_settings.SavePath, "");
  EXPECT_FALSE(on("optRecMode_3"));
  click("cmdBrowseSaveFolder");
  m_chosen("/home/takes");
  EXPECT_EQ(m_settings.SavePath, "/home/takes/");
  EXPECT_EQ(text("lblSavePath"), "/home/takes/");
  EXPECT_TRUE(on("optRecMode_2") && on("optRecMode_3"));
  EXPECT_EQ(m_settings.RecordingMode, 1);
  click("cmdBrowseSaveFolder");
  EXPECT_EQ(m_start, "/home/takes/");
  m_dialog.reset();
  m_chosen("/elsewhere");
  EXPECT_EQ(m_settings.SavePath, "/home/takes/") << "the dialog is gone";
}

TEST_F(RecordingSetupTest, StandsInTheMiddleAboveTheRecordingPanel) {
  EXPECT_EQ(RecordingSetup::placeOver({100, 50, 900, 700}, {400, 300}), QPoint(350, 367));
  EXPECT_EQ(RecordingSetup::placeOver({0, 0, 801, 600}, {401, 200}), QPoint(200, 317));
}

}  // namespace
}  // namespace qv3
