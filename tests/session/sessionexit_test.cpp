#include <gtest/gtest.h>

#include <utility>

#include "tests/session/sessionrig.h"

namespace qv3 {
namespace {

struct ExitRig : test::SessionRig {
  std::optional<bool> went;

  ExitRig() { settings.SuffixType = 0; }
  void exit() {
    session.prepareExit([this](bool go) { went = go; });
  }
  // What an exit finds.
  void nothing() {}
  void recorded() { recordSeconds(1); }
  void recordedUnprompted() {
    recordSeconds(1);
    settings.RecPromptEnable = false;
  }
  void recordedToNowhere() {
    recordSeconds(1);
    files.folders.erase("/rec");
  }
  /// The question before a load was answered, and then its file dialog cancelled.
  void answeredInVain() {
    recordSeconds(1);
    session.cmdLoad();
    view.reply(true);
    settings.RecPromptEnable = false;
  }
  void leadIn() {
    session.cmdRecord();
    frames(10);
  }
  void recording() {
    session.cmdRecord();
    frames(80);
  }
  void autoSaving() {
    settings.RecordingMode = 3;
    recording();
  }
  void recordingSound() {
    settings.AudioEnable = true;
    session.cmdRecord();
    media.position = kSoundBytesPerSecond;
    frames(30);
  }
  void saving() {
    recordSeconds(1);
    session.cmdSave();
  }
  void playing() {
    recordSeconds(1);
    session.cmdPlay(now);
  }
  void playingSaved() {
    saving();
    polls();
    session.cmdPlay(now);
  }
  // What may happen while its question stands.
  void lineGoes() { instrument.portLost(now); }
  void playbackEnds() {
    session.cmdStop(now);
    session.poll(now);
  }
  void soundCompletesItsSecond() {
    instrument.portLost(now);
    media.position += kSoundBytesPerSecond;
    frames(2);
  }
};

TEST(SessionExit, AsksAboutWhatIsAtStakeAndEndsWhatIsUnderWay) {
  struct Row {
    const char* what;
    void (ExitRig::*found)();
    std::optional<bool> answer;  ///< nothing: it is not asked
    bool goes;
    const char* fate;  ///< of the journal
    std::string saved{};
    bool signal = false;
  };
  const std::optional<bool> kUnasked;
  const std::string kFile = "/rec/Prefix_001.qvd";
  for (const Row& row : {Row{"nothing", &ExitRig::nothing, kUnasked, true, ""},
                         Row{"unsaved, no", &ExitRig::recorded, false, false, "finished"},
                         Row{"unsaved, yes", &ExitRig::recorded, true, true, "removed"},
                         Row{"no prompt", &ExitRig::recordedUnprompted, kUnasked, true, "trash"},
                         Row{"in vain", &ExitRig::answeredInVain, kUnasked, true, "trash"},
                         Row{"recording, no", &ExitRig::recording, false, false, "open"},
                         Row{"recording, yes", &ExitRig::recording, true, true, "removed"},
                         Row{"lead-in", &ExitRig::leadIn, kUnasked, true, ""},
                         Row{"playback", &ExitRig::playingSaved, kUnasked, true, "removed"},
                         Row{"auto save", &ExitRig::autoSaving, kUnasked, true, "removed", kFile},
                         Row{"save", &ExitRig::saving, kUnasked, true, "removed", kFile},
                         Row{"signal", &ExitRig::recorded, kUnasked, true, "removed", kFile, true},
                         Row{"signal, no folder", &ExitRig::recordedToNowhere, kUnasked, true,
                             "removed", "/state/Prefix_001.qvd", true},
                         Row{"signal, lead-in", &ExitRig::leadIn, kUnasked, true, "", "", true}}) {
    SCOPED_TRACE(row.what);
    ExitRig rig;
    (rig.*row.found)();
    const bool recording = rig.instrument.operation() == Operation::Recording;
    if (row.signal) {
      rig.session.prepareSilentExit([&rig] { rig.went = true; });
    } else {
      rig.exit();
    }
    ASSERT_EQ(rig.view.answers.size(), row.answer ? 1U : 0U);
    if (row.answer) {
      EXPECT_EQ(rig.view.asked.back(), "Recording not saved, Exit?");
      const Operation before = rig.instrument.operation();
      rig.frames(10);
      EXPECT_EQ(rig.instrument.operation(), before) << "it goes on while the question stands";
      EXPECT_FALSE(rig.went);
      rig.view.reply(*row.answer);
    }
    EXPECT_EQ(rig.went.has_value(), row.saved.empty()) << "second and file have to be whole";
    rig.frames(60);
    rig.polls();
    EXPECT_EQ(rig.went, row.goes);
    EXPECT_EQ(rig.journals.empty() ? "" : rig.journals.back().fate, row.fate);
    EXPECT_TRUE(row.saved.empty() || rig.files.contents.count(row.saved) == 1);
    EXPECT_EQ(rig.instrument.operation() == Operation::None, row.goes || !recording);
  }
}

TEST(SessionExit, WhatEndsByItselfMeanwhileIsNoAnswer) {
  for (const auto& [found, ends] :
       {std::pair(&ExitRig::recording, &ExitRig::lineGoes),
        std::pair(&ExitRig::playing, &ExitRig::playbackEnds),
        std::pair(&ExitRig::recordingSound, &ExitRig::soundCompletesItsSecond)}) {
    ExitRig rig;
    (rig.*found)();
    rig.exit();
    (rig.*ends)();
    SCOPED_TRACE(testing::Message() << rig.media.commands.back());
    EXPECT_EQ(rig.instrument.operation(), Operation::None);
    EXPECT_FALSE(rig.went);
    rig.view.reply(false);
    EXPECT_EQ(rig.went, false);
    EXPECT_TRUE(rig.session.take().unsaved);
  }
}

TEST(SessionExit, YesCutsShortAStopThatBeganMeanwhile) {
  ExitRig rig;
  rig.recordingSound();
  rig.exit();
  rig.session.cmdStop(rig.now);
  ASSERT_EQ(rig.instrument.operation(), Operation::Stopping);
  rig.view.reply(true);
  EXPECT_EQ(rig.went, true);
  EXPECT_EQ(rig.journals.back().fate, "removed");
  rig.frames(3);
  EXPECT_EQ(rig.instrument.programState(), 1);
}

TEST(SessionExit, AnAutoSaveThatFailsAsksWhereToAndCancelCancelsTheExit) {
  for (const bool cancelled : {true, false}) {
    ExitRig rig;
    rig.autoSaving();
    const auto room = std::exchange(rig.files.room, 300);
    rig.exit();
    rig.frames(60);
    rig.polls();
    ASSERT_FALSE(rig.view.told.empty());
    EXPECT_NE(rig.view.told.back().find("The recording could not be saved: "), std::string::npos);
    EXPECT_EQ(rig.view.dialog.title, "Save Recording As");
    EXPECT_FALSE(rig.went);
    rig.files.room = room;
    rig.view.chosen(cancelled ? "" : "/rec/elsewhere.qvd");
    rig.polls();
    EXPECT_EQ(rig.went, !cancelled);
    EXPECT_EQ(rig.session.take().unsaved, cancelled);
    EXPECT_EQ(rig.files.contents.count("/rec/elsewhere.qvd"), cancelled ? 0U : 1U);
  }
}

}  // namespace
}  // namespace qv3
