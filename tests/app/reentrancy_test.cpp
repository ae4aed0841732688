#include <gtest/gtest.h>

#include <sstream>

#include "tests/app/situations.h"

namespace qv3::test {
namespace {

/// Everything that a refused command could have changed.
std::string picture(const Situations& rig) {
  std::ostringstream text;
  const Instrument& meter = rig.instrument();
  const MeterState& state = meter.state();
  for (const SettingRow& row : settingsRows()) text << textOf(rig.settings(), row) << '\n';
  const Situation situation = meter.situation();
  text << static_cast<int>(situation.operation) << situation.meterFound << situation.sessionLoaded
       << situation.unsaved << state.SetRequest << state.BdRunning << state.BmOff << state.Frozen
       << state.NeedleTest << ' ' << state.BdAccum << ' ' << state.TagCount << ' ' << state.ModeText
       << ' ' << meter.recorder().records().count() << ' ' << rig.log.size() << ' '
       << rig.media.commands.size() << ' ' << rig.files.calls << ' ' << rig.ended << '\n';
  for (const JournalLog& journal : rig.journals) text << journal.fate << ' ';
  for (const auto& [path, bytes] : rig.files.contents) text << path << bytes.size() << '\n';
  if (const QDialog* dialog = Situations::openDialog()) text << dialog->objectName().toStdString();
  return text.str();
}

/// Takes every way to what is refused; how many are not.
int expectRefusals(Situations& rig) {
  int acting = 0;
  for (const Route& route : rig.routes()) {
    if (rig.instrument().allowed(route.command)) {
      ++acting;
      continue;
    }
    const std::string before = picture(rig);
    route.take();
    Situations::turnOver();
    EXPECT_EQ(picture(rig), before) << route.name;
  }
  return acting;
}

class EveryCommand : public testing::TestWithParam<Place> {
 protected:
  bool reached() {
    rig.reach(GetParam());
    return !HasFatalFailure();
  }

  Situations rig;
};

TEST_P(EveryCommand, ThatIsRefusedChangesNothing) {
  ASSERT_TRUE(reached());
  EXPECT_GT(expectRefusals(rig), 0);
}

TEST_P(EveryCommand, ThatActsLeavesAProgramThatComesToRest) {
  ASSERT_TRUE(reached());
  for (const Route& route : rig.routes()) {
    if (route.command == Command::Exit || !rig.instrument().allowed(route.command)) continue;
    route.take();
    route.take();  // a double click
    Situations::turnOver();
    if (rig.isAt(GetParam()) && Situations::openDialog() == nullptr) continue;
    rig.rest();
    ASSERT_TRUE(rig.isAt(kLive)) << route.name;
    ASSERT_EQ(Situations::openDialog(), nullptr) << route.name;
    ASSERT_FALSE(rig.ended) << route.name;
    ASSERT_TRUE(reached()) << route.name;
  }
}

TEST_P(EveryCommand, IsFollowedByAnExit) {
  for (const bool silently : {false, true}) {
    ASSERT_TRUE(reached());
    if (silently) {
      rig.program->endSilently();
    } else {
      rig.window().close();
    }
    for (int round = 0; round < 100 && !rig.ended; ++round) {
      if (auto* box = qobject_cast<QMessageBox*>(Situations::openDialog())) {
        EXPECT_FALSE(silently) << "a silent end asks nothing";
        box->button(QMessageBox::Yes)->click();
      }
      rig.frames(5);
    }
    ASSERT_TRUE(rig.ended);
    EXPECT_EQ(rig.operation(), Operation::Closing);
    EXPECT_EQ(rig.settings().KnobPosition, 0) << "live values stand again";
    for (const JournalLog& journal : rig.journals) EXPECT_NE(journal.fate, "open");
    rig.start();
  }
}

INSTANTIATE_TEST_SUITE_P(InEveryState, EveryCommand, testing::ValuesIn(kPlaces),
                         [](const auto& row) { return row.param.name; });

TEST(Playing, ARecordedDialGreysWhatBelongsToAnother) {
  Situations rig;
  rig.load(rig.file("Take_001.qvd"));
  rig.pass(std::chrono::milliseconds{100});
  emit rig.panel().playClicked();
  Situations::turnOver();
  EXPECT_TRUE(rig.item("mnuSetNeedleBD")->isEnabled());
  rig.pass(std::chrono::milliseconds{100});
  ASSERT_EQ(rig.settings().DialType, 0);
  EXPECT_FALSE(rig.item("mnuSetNeedleBD")->isEnabled());
}

TEST(Waiting, RefusesEveryCommandButExit) {
  Situations rig;
  int waits = 0;
  rig.waiter.during = [&] {
    if (++waits > 1) return;
    EXPECT_EQ(expectRefusals(rig), 2) << "the item and the window's own";
  };
  rig.trigger("mnuConnectionConnect");
  EXPECT_GT(waits, 0);
  EXPECT_TRUE(rig.isAt(kLive));
  EXPECT_EQ(Situations::openDialog(), nullptr);
}

TEST(Closing, RefusesEveryCommand) {
  Situations rig;
  rig.trigger("mnuSettingsAutoSavePrompt");
  rig.trigger("mnuSettingsNeedleWidth_8");
  rig.window().close();
  ASSERT_TRUE(rig.dialog("msgSaveSettings"));
  EXPECT_EQ(expectRefusals(rig), 0);
}

}  // namespace
}  // namespace qv3::test
