#include "recording/savesession.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "recording/wavheader.h"
#include "tests/support/memoryfiles.h"

namespace qv3 {
namespace {

using test::MemoryFiles;
using testing::ElementsAre;
using testing::Pair;
using testing::UnorderedElementsAre;
using Files = std::map<std::string, std::string>;

std::string textOf(const std::vector<std::uint8_t>& bytes) {
  return {bytes.begin(), bytes.end()};
}

/// A recording of `count` samples, the last at (count - 1) * 20 ms, and a folder with an old one.
struct Rig {
  MemoryFiles files;
  Take take;
  SaveTarget target{"/s/", "Take_001"};

  explicit Rig(int count = 3) {
    for (int n = 0; n < count; ++n) {
      SampleRecord record;
      record.Time = n * 20;
      record.PacketType = 'P';
      take.records.append(record);
    }
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

  SaveSession::State save(std::string* failure = nullptr) {
    SaveSession session(files, take, target, {});
    while (session.step() == SaveSession::State::Saving) {
      EXPECT_LE(session.progress(), 1);
    }
    if (failure) *failure = session.failure();
    if (session.state() == SaveSession::State::Done) noteSaved(take, session.saved());
    return session.state();
  }

  std::string data() const { return textOf(fileBytes(take.records, take.start, {})); }
};

TEST(Save, WritesBothFilesAndSetsAsideWhatTheyReplace) {
  Rig rig;
  rig.addOld();
  const std::string data = rig.data();
  EXPECT_THAT(filesReplacedBy(rig.files, rig.target),
              ElementsAre("/s/Take_001.qvd", "/s/Take_001.wav", "/s/Take_001.MP3"));
  ASSERT_EQ(rig.save(), SaveSession::State::Done);
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
  ASSERT_EQ(rig.save(), SaveSession::State::Done);
  EXPECT_EQ(rig.files.contents["/s/Take_001.qvd~"], "older");
  EXPECT_EQ(rig.files.contents["/s/Take_001.qvd~2"], "old data");
  EXPECT_EQ(rig.files.contents["/s/Take_001.wav~"], "old sound");
}

TEST(Save, ADiskThatFillsUpAtAnyByteLeavesTheFolderAsItWas) {
  Rig whole;
  ASSERT_EQ(whole.save(), SaveSession::State::Done);
  const auto size = whole.data().size() + kPcmHeaderSize + 4 * 882;
  for (std::uint64_t room = 0; room < size; ++room) {
    Rig rig;
    rig.addOld();
    const Files before = rig.files.contents;
    rig.files.room = room;
    std::string failure;
    ASSERT_EQ(rig.save(&failure), SaveSession::State::Failed) << room;
    ASSERT_EQ(failure, "The recording could not be saved: No space left on device");
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
      if (rig.save() == SaveSession::State::Failed) {
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
    std::uint64_t offset;
    std::uint64_t length;
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
    ASSERT_EQ(rig.save(), SaveSession::State::Done) << row.name;
    EXPECT_EQ(rig.files.contents[row.saved], expected) << row.name;
    EXPECT_EQ(rig.files.trash.count("/s/x.WAV"), 1U) << "old sound, even where it is the source";
  }
}

TEST(Save, WithoutSoundTheDataFileStandsAlone) {
  Rig rig;
  rig.addOld();
  rig.take.sound = {};
  ASSERT_EQ(rig.save(), SaveSession::State::Done);
  EXPECT_EQ(rig.files.contents["/s/Take_001.qvd"], rig.data());
  EXPECT_EQ(rig.files.contents.size(), 3U) << "no old sound stays beside new data";
}

TEST(Save, ALoadedSessionWhoseSoundIsGoneIsNotSavedWithout) {
  Rig rig;
  rig.take.sound = {TakeSound::Kind::Mp3, "/s/gone.mp3"};
  std::string failure;
  EXPECT_EQ(rig.save(&failure), SaveSession::State::Failed);
  EXPECT_EQ(failure, "The recording could not be saved: its sound is gone: /s/gone.mp3");
  EXPECT_EQ(rig.files.contents.size(), 1U);
}

TEST(Save, LongRecordingsAreWrittenInSlices) {
  Rig rig(10000);
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
}

TEST(Save, RefusesTargetsThatCannotWork) {
  struct Row {
    const char* folder;
    std::string name;
    const char* reason;  ///< null where it is accepted
  };
  const std::vector<Row> rows = {
      {"", "x", "no folder is chosen"},
      {"s", "x", "the folder \"s\" does not exist"},
      {"/gone/", "x", "the folder \"/gone/\" does not exist"},
      {"/s", "a\"b", "the path holds a quotation mark: /s/a\"b"},
      {"/s", "sub/", "the name is empty"},
      {"/s", std::string(252, 'n'), "the name is too long"},
      {"/s", std::string(251, 'n'), nullptr},
      {"/s", "new/er/x", nullptr},
  };
  for (const Row& row : rows) {
    Rig rig;
    rig.target = {row.folder, row.name};
    std::string failure;
    const auto state = rig.save(&failure);
    EXPECT_EQ(state == SaveSession::State::Done, row.reason == nullptr) << failure;
    if (row.reason != nullptr) {
      EXPECT_EQ(failure, std::string("The recording could not be saved: ") + row.reason);
      EXPECT_EQ(rig.files.calls, 0) << "nothing was touched";
    }
  }
}

TEST(SaveTargets, TypedNames) {
  struct Row {
    const char* typed;
    const char* folder;
    const char* name;
  };
  for (const Row& row : {Row{"/s/x", "/s/", "x"}, Row{"/s/x.qvd", "/s/", "x"},
                         Row{"/s/x.QVD", "/s/", "x"}, Row{"/s/x.wav", "/s/", "x.wav"},
                         Row{"/s.qvd/.qvd", "/s.qvd/", ""}, Row{"qvd", "", "qvd"}}) {
    const SaveTarget target = typedTarget(row.typed);
    EXPECT_EQ(target.folder, row.folder) << row.typed;
    EXPECT_EQ(target.name, row.name) << row.typed;
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

}  // namespace
}  // namespace qv3
