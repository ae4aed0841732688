#include "recording/savesession.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "recording/diskwatch.h"
#include "recording/foldernames.h"
#include "recording/naming.h"
#include "recording/wavheader.h"
#include "tests/support/memoryfiles.h"
#include "tests/support/records.h"

namespace qv3 {
namespace {

using test::textOf;
using testing::ElementsAre;
using testing::Pair;
using testing::UnorderedElementsAre;
using Files = std::map<std::string, std::string>;

/// A recording of `count` samples, the last at (count - 1) * 20 ms, and a folder with an old one.
struct Rig {
  test::MemoryFiles files;
  Take take;
  SaveTarget target{"/s/", "Take_001"};

  explicit Rig(int count = 3) {
    take.records = test::someRecords(count);
    take.start = SessionStart{3661, 42};
    take.withSound = true;
    take.sound = {TakeSound::Kind::Spool, "/state/1.wav", 4, 4 * 882};
    take.unsaved = true;
    files.folders = {"/s", "/state"};
    files.contents["/state/1.wav"] = "head" + std::string(4 * 882, 's') + "tail";
  }

  void addOld() {
    files.contents["/s/Take_001.qvd"] = "old data";
    files.contents["/s/Take_001.wav"] = "old sound";
    files.contents["/s/Take_001.MP3"] = "old music";
    files.contents["/s/Take_002.qvd"] = "another";
  }

  /// Why it could not be saved; empty if it was.
  std::string save() {
    SaveSession session(files, take, target, {});
    while (session.step() == SaveSession::State::Saving) {
      EXPECT_LE(session.progress(), 1);
    }
    const bool done = session.state() == SaveSession::State::Done;
    EXPECT_EQ(session.failure().empty(), done);
    if (done) noteSaved(take, session.saved());
    return session.failure();
  }

  std::string data() const { return textOf(fileBytes(take.records, take.start, {})); }
};

TEST(Save, WritesBothFilesAndSetsAsideWhatTheyReplace) {
  Rig rig;
  rig.addOld();
  const std::string data = rig.data();
  EXPECT_THAT(filesReplacedBy(rig.files, rig.target),
              ElementsAre("/s/Take_001.qvd", "/s/Take_001.wav", "/s/Take_001.MP3"));
  ASSERT_EQ(rig.save(), "");
  const std::string wav = textOf(pcmHeader(recordedFormat(), 4 * 882)) + std::string(4 * 882, 's');
  EXPECT_THAT(
      rig.files.contents,
      UnorderedElementsAre(Pair("/s/Take_001.qvd", data), Pair("/s/Take_001.wav", wav),
                           Pair("/s/Take_002.qvd", "another"), Pair("/state/1.wav", testing::_)));
  EXPECT_THAT(rig.files.renamed, ElementsAre("/s/Take_001.wav", "/s/Take_001.qvd"));
  EXPECT_EQ(rig.files.trash.size(), 3U);
  EXPECT_EQ(rig.files.syncs, 1);
  EXPECT_FALSE(rig.take.unsaved);
  EXPECT_EQ(rig.take.sound, (TakeSound{TakeSound::Kind::Wav, "/s/Take_001.wav"}));
}

TEST(Save, WithoutATrashOldFilesGetATilde) {
  Rig rig;
  rig.addOld();
  rig.files.hasTrash = false;
  rig.files.contents["/s/Take_001.qvd~"] = "older";
  ASSERT_EQ(rig.save(), "");
  EXPECT_EQ(rig.files.contents["/s/Take_001.qvd~"], "older");
  EXPECT_EQ(rig.files.contents["/s/Take_001.qvd~2"], "old data");
  EXPECT_EQ(rig.files.contents["/s/Take_001.wav~"], "old sound");
}

TEST(Save, ADiskThatFillsUpAtAnyByteLeavesTheFolderAsItWas) {
  Rig whole;
  ASSERT_EQ(whole.save(), "");
  const auto size = whole.data().size() + kPcmHeaderSize + 4 * 882;
  for (std::uint64_t room = 0; room < size; ++room) {
    Rig rig;
    rig.addOld();
    const Files before = rig.files.contents;
    rig.files.room = room;
    ASSERT_EQ(rig.save(), "The recording could not be saved: No space left on device") << room;
    ASSERT_EQ(rig.files.contents, before) << room;
    ASSERT_TRUE(rig.take.unsaved);
  }
}

TEST(Save, AFailureOfAnyCallLeavesTheFolderAsItWas) {
  for (const bool hasTrash : {true, false}) {
    int failures = 0;
    for (int call = 0;; ++call) {
      Rig rig;
      rig.addOld();
      const Files before = rig.files.contents;
      rig.files.hasTrash = hasTrash;
      rig.files.failingCall = call;
      if (!rig.save().empty()) {
        ++failures;
        EXPECT_EQ(rig.files.contents, before) << call;
      }
      if (rig.files.calls <= call) break;
    }
    // Two new files and two new names; without a trash also three names of old files. A trash that
    // fails is no failure.
    EXPECT_EQ(failures, hasTrash ? 4 : 7);
  }
}

TEST(Save, SoundGoesAlongAsWhatItIs) {
  struct Row {
    const char* name;
    TakeSound::Kind kind;
    const char* path;
    std::uint64_t offset, length;
    const char* saved;    ///< its name then
    std::size_t sound;    ///< bytes of the spool in it
    std::size_t silence;  ///< and what is added
  };
  using Kind = TakeSound::Kind;
  for (const Row& row : {
           Row{"wav", Kind::Wav, "/s/x.WAV", 0, 0, "/s/x.wav", 0, 0},
           Row{"mp3", Kind::Mp3, "/s/x.WAV", 0, 0, "/s/x.mp3", 0, 0},
           Row{"to the last sample", Kind::Spool, "/state/1.wav", 4, 1764, "/s/x.wav", 1764, 0},
           Row{"ends before it", Kind::Spool, "/state/1.wav", 4, 1762, "/s/x.wav", 1762, 884},
           Row{"is cut short", Kind::Spool, "/state/1.wav", 3004, 9000, "/s/x.wav", 532, 2114},
           Row{"is gone", Kind::Spool, "/state/2.wav", 0, 9000, "/s/x.wav", 0, 2646},
       }) {
    Rig rig;
    rig.files.contents["/s/x.WAV"] = "RIFF!";
    rig.target.name = "x";
    rig.take.sound = {row.kind, row.path, row.offset, row.length};
    std::string expected = "RIFF!";
    if (row.kind == Kind::Spool) {
      expected = textOf(pcmHeader(recordedFormat(), row.sound + row.silence)) +
                 rig.files.contents["/state/1.wav"].substr(row.offset, row.sound) +
                 std::string(row.silence, '\0');
    }
    ASSERT_EQ(rig.save(), "") << row.name;
    EXPECT_EQ(rig.files.contents[row.saved], expected) << row.name;
    EXPECT_EQ(rig.files.trash.count("/s/x.WAV"), 1U) << "old sound, even where it is the source";
  }
}

TEST(Save, LongRecordingsAreWrittenInSlicesAndStandAloneWithoutSound) {
  Rig rig(10000);
  rig.addOld();
  rig.take.sound = {};
  SaveSession session(rig.files, rig.take, rig.target, {});
  int steps = 0;
  double before = 0;
  while (session.step() == SaveSession::State::Saving) {
    ++steps;
    EXPECT_GE(session.progress(), before);
    before = session.progress();
  }
  EXPECT_GE(steps, 4);
  EXPECT_EQ(rig.files.contents["/s/Take_001.qvd"], rig.data());
  EXPECT_EQ(rig.files.contents.size(), 3U) << "without sound of its own no old one stays beside it";
}

TEST(Save, RefusesWhatCannotWork) {
  struct Row {
    const char* folder;
    std::string name;
    std::string reason;  ///< empty where it is accepted
    TakeSound sound = {};
  };
  const std::vector<Row> rows = {
      {"", "x", "no folder is chosen"},
      {"s", "x", "the folder \"s\" does not exist"},
      {"/gone/", "x", "the folder \"/gone/\" does not exist"},
      {"/s", "a\"b", "the path holds a quotation mark: /s/a\"b"},
      {"/s", "sub/", "the name is empty"},
      {"/s", std::string(252, 'n'), "the name is too long"},
      {"/s", std::string(251, 'n'), ""},
      {"/s", "new/er/x", ""},
      {"/s", "x", "its sound is gone: /s/gone.mp3", {TakeSound::Kind::Mp3, "/s/gone.mp3"}},
  };
  for (const Row& row : rows) {
    Rig rig;
    rig.target = {row.folder, row.name};
    rig.take.sound = row.sound;
    const Files before = rig.files.contents;
    EXPECT_EQ(rig.save(), row.reason.empty() ? "" : kSaveFailure + row.reason);
    if (row.reason.empty()) continue;
    EXPECT_EQ(rig.files.contents, before) << row.reason;
    EXPECT_EQ(rig.files.calls == 0, row.sound.kind == TakeSound::Kind::None) << row.reason;
  }
}

TEST(SaveTargets, TypedNames) {
  for (const auto& [typed, parts] : {std::pair{"/s/x", "/s/|x"},
                                     {"/s/x.qvd", "/s/|x"},
                                     {"/s/x.QVD", "/s/|x"},
                                     {"/s/x.wav", "/s/|x.wav"},
                                     {"/s.qvd/.qvd", "/s.qvd/|"},
                                     {"qvd", "|qvd"}}) {
    const SaveTarget target = typedTarget(typed);
    EXPECT_EQ(target.folder + '|' + target.name, parts) << typed;
  }
}

TEST(Reset, TakesNumberedFilesOfThePrefixAlone) {
  Rig rig;
  rig.files.folders.insert("/s/sub");
  const std::vector<std::string> stay = {
      "Take_1000.qvd", "Take_01.wav",   "Take_123.mp3", "Take_12\xC3\xA4\xC3\xA4.qvd",
      "aTake_123.qvd", "Take_123.qvd~", "Take_.qvd",    "sub/Take_001.qvd"};
  const std::vector<std::string> go = {"Take_001.wav", "Take_123.qvd", "Take_12\xC3\xA4.qvd"};
  for (const auto& name : stay) rig.files.contents["/s/" + name] = "";
  for (const auto& name : go) rig.files.contents["/s/" + name] = "";

  const Files before = rig.files.contents;
  resetNumberedFiles(rig.files, {"", "Take_"});
  EXPECT_EQ(rig.files.contents, before) << "no folder";
  resetNumberedFiles(rig.files, {"/s/", "Take_"});
  EXPECT_EQ(rig.files.contents.size(), stay.size() + 1);
  for (const auto& name : go) EXPECT_EQ(rig.files.trash.count("/s/" + name), 1U) << name;
  resetNumberedFiles(rig.files, {"/s", "sub/Take_"});
  EXPECT_EQ(rig.files.trash.count("/s/sub/Take_001.qvd"), 1U);
}

TEST(Naming, NamesAreFormedFromPrefixAndSuffix) {
  EXPECT_EQ(recordingName("Prefix_", 0, 1, "x"), "Prefix_001");
  EXPECT_EQ(recordingName("Prefix_", 0, 1234, "x"), "Prefix_1234");
  EXPECT_EQ(recordingName("Prefix_", 1, 1, "17-01-05__14.03.27"), "Prefix_17-01-05__14.03.27");
}

TEST(Naming, PrefixesThatSomeSystemRefusesAreRefused) {
  struct Row {
    std::string prefix;
    PrefixFault fault;
  };
  const Row rows[] = {
      {"", PrefixFault::None},
      {"Take_", PrefixFault::None},
      {"folder/Take é 日本", PrefixFault::None},
      {"a:b", PrefixFault::Character},
      {"a\tb", PrefixFault::Character},
      {"what?", PrefixFault::Character},
      {std::string(225, 'a'), PrefixFault::None},
      {std::string(226, 'a'), PrefixFault::Length},
      {std::string(255, 'a') + "/b/c", PrefixFault::None},
      {"b/" + std::string(256, 'a') + "/c", PrefixFault::Length},
  };
  for (const Row& row : rows) EXPECT_EQ(checkPrefix(row.prefix), row.fault) << row.prefix;
}

TEST(Naming, NumberedNamesSplitAtTheirLastThreeCharacters) {
  struct Row {
    const char *name, *prefix;
    int number;
  };
  for (const Row& row :
       {Row{"Take_007", "Take_", 7}, Row{"12", "12", 0}, Row{"007", "", 7},
        Row{"Take_1000", "Take_1", 0}, Row{"session", "sess", 0}, Row{"Té12", "T", 0}}) {
    const NumberedName split = splitNumberedName(row.name);
    EXPECT_EQ(std::pair(split.prefix, split.number),
              std::pair(std::string(row.prefix), row.number));
  }
}

TEST(Naming, SkipsGrowWithTheSession) {
  for (const auto& [length, skip] :
       {std::pair{0, 10}, {599, 10}, {600, 15}, {1799, 15}, {1800, 30}, {3599, 30}, {3600, 60}}) {
    EXPECT_EQ(skipSeconds(length), skip) << length;
  }
}

TEST(FolderNames, CompanionsByExactNameThenIgnoringCase) {
  const FileNames names = {"TAKE.WAV", "take.wav", "Take.Wav", "Take.mp3", "Takes.wav", "b.wav"};
  EXPECT_EQ(findCompanion(names, "take", ".wav"), "take.wav");
  EXPECT_EQ(findCompanion(names, "Take", ".wav"), "TAKE.WAV");
  EXPECT_EQ(findCompanion(names, "TAKE", ".mp3"), "Take.mp3");
  EXPECT_EQ(findCompanion(names, "b", ".mp3"), std::nullopt);
}

TEST(FolderNames, ASoundOfAnotherRecordingIsNotReplaced) {
  struct Row {
    FileNames there, replaced;
  };
  const std::vector<Row> rows = {
      {{"a.qvd", "a.txt", "b.qvd", "a.qvd~"}, {"a.qvd"}},
      {{"a.mp3", "a.wav"}, {"a.wav", "a.mp3"}},
      {{"a.WAV"}, {"a.WAV"}},
      {{"A.wav"}, {"A.wav"}},
      {{"A.qvd", "A.wav"}, {}},
      {{"A.qvd", "a.wav", "A.wav"}, {"a.wav"}},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(replacedFiles(row.there, "a"), row.replaced) << "row " << &row - rows.data();
  }
}

constexpr std::uint64_t kSilent = 1000;
constexpr std::uint64_t kSounding = 45100;

TEST(DiskWatch, SecondsThatStillFit) {
  using Room = std::optional<DiskRoom>;
  struct Row {
    Room state, save;
    std::uint64_t taken;
    bool withSound;
    std::optional<std::int64_t> seconds;
  };
  const std::vector<Row> rows = {
      {std::nullopt, std::nullopt, 0, true, std::nullopt},
      {DiskRoom{100 * kSilent, 1}, std::nullopt, 5, false, 100},
      {DiskRoom{100 * kSounding, 1}, std::nullopt, 0, true, 100},
      {std::nullopt, DiskRoom{100 * kSilent, 1}, 30 * kSilent, false, 70},
      {std::nullopt, DiskRoom{100 * kSilent, 1}, 130 * kSilent, false, 0},
      {DiskRoom{100 * kSilent, 1}, DiskRoom{300 * kSilent, 2}, 10, false, 100},
      {DiskRoom{300 * kSilent, 1}, DiskRoom{100 * kSilent, 2}, 0, false, 100},
      {DiskRoom{100 * kSilent, 1}, DiskRoom{100 * kSilent, 1}, 0, false, 50},
      {DiskRoom{100 * kSilent, 1}, DiskRoom{100 * kSilent, 1}, 60 * kSilent, false, 20},
      {DiskRoom{~std::uint64_t{0}, 1}, std::nullopt, 0, false, 18446744073709551},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(recordingSecondsLeft(row.state, row.save, row.taken, row.withSound), row.seconds)
        << "row " << &row - rows.data();
  }
}

TEST(DiskWatch, AnHourIsToldOnceAndTwoMinutesEndIt) {
  using Verdict = DiskWatch::Verdict;
  DiskWatch watch;
  EXPECT_EQ(watch.look(std::nullopt), Verdict::Enough);
  EXPECT_EQ(watch.look(3601), Verdict::Enough);
  EXPECT_EQ(watch.look(3600), Verdict::Tell);
  EXPECT_EQ(watch.look(3000), Verdict::Enough);
  EXPECT_EQ(watch.look(120), Verdict::Enough);
  EXPECT_EQ(watch.look(119), Verdict::Full);
  EXPECT_EQ(watch.look(119), Verdict::Full);
  EXPECT_EQ(diskMessage(Verdict::Tell, 3000), "The disk has room for 0:50:00 of recording.");
}

}  // namespace
}  // namespace qv3
