#include <gtest/gtest.h>

#include <numeric>
#include <random>
#include <string>

#include "recording/sound/pcmreader.h"
#include "recording/sound/spool.h"
#include "tests/support/records.h"
#include "tests/support/soundscript.h"

namespace qv3::test {
namespace {

TEST(WavFile, PlaysRecordsAndSaves) {
  const std::pair<const char*, const char*> rows[] = {
      {"plays in real time to its end",
       "open tone5.wav; bytes; play from 44100; sleep 500; position = 66150; pause; sleep 10000; "
       "position = 66150; resume; sleep 3499; mode = playing; sleep 2; mode = stopped; "
       "position = 220500"},
      {"plays to a place, over a pause",
       "open tone5.wav; play from 1000 to 2000; sleep 400; pause; resume; sleep 900; "
       "mode = stopped; position = 2000"},
      {"the timing track never ends and needs no stream",
       "open dummy.mp3 as mpegvideo; length = 3000; seek to 93600000; play; sleep 10000000; "
       "position = 103600000; mode = playing; streams = 0; seek to end; position = 3000; "
       "play from 9223372036854775807; sleep 10; mode = playing"},
      {"saves what it heard, as often as asked",
       "start; hear 1000 1000; hear -2000 1000; position = 88200; stop; length = 88200; "
       "save one.wav; seek to start; delete from 0 to 44100; length = 44100; save two.wav; "
       "size one.wav = 88244; sample one.wav 22050 = 1000; sample one.wav 66150 = -2000; "
       "header one.wav = 52494646AC58010057415645666D7420100000000100010022560000"
       "44AC0000020010006461746188580100; size two.wav = 44144; sample two.wav 0 = -2000; "
       "size one.wav.tmp = none"},
      {"what is on the way at the stop comes in yet",
       "start; hear 1000 2000; sleep 15; stop; length = 88860; delete from 0 to 44100; "
       "save early.wav; sleep 5; complete = no; arrive 3000 20; complete = yes; sleep 500; "
       "length = 44760; save late.wav; sample early.wav 44758 = 0; sample late.wav 44758 = 3000"},
      {"but not to where a cut has moved the sound",
       "start; hear 1000 2000; sleep 15; stop; delete from 0 to 4; arrive 3000 20; "
       "length = 88856"},
      {"nor to what was cut",
       "start; hear 1000 1000; sleep 15; stop; delete from 0 to 44760; arrive 3000 20; length = 0; "
       "close; open spool1; length = 0"},
      {"without a microphone it is silence, and is not waited for long",
       "start; sleep 3000; position = 132300; stop; sleep 199; complete = no; sleep 1; "
       "complete = yes; save a.wav; size a.wav = 132344; all a.wav = 0"},
      {"silence of 8 bit is the middle",
       "open new; record; sleep 1000; stop; save a.wav; size a.wav = 11069; all a.wav = 128"},
      {"a lost second is silence of a second",
       "start; hear 1000 1000; sleep 1000; hear 2000 1000; stop; save a.wav; "
       "sample a.wav 43000 = 1000; sample a.wav 66150 = 0; sample a.wav 87000 = 0; "
       "sample a.wav 89400 = 2000"},
      {"sound that came late is not torn apart",
       "start; hear 1000 1000; sleep 1000; arrive 2000 1000; hear 3000 1000; stop; save a.wav; "
       "sample a.wav 43000 = 1000; sample a.wav 45200 = 2000; sample a.wav 87000 = 2000; "
       "sample a.wav 89400 = 3000"},
      {"paused it records nothing and goes on without a gap",
       "start; hear 1000 1000; pause; position = 44100; sleep 5000; length = 44100; resume; "
       "hear 2000 1000; position = 88200; length = 88200"},
      {"close loses nothing",
       "start; hear 1234 1000; close; spool = /s/spool1 52 44100; open spool1; bytes; "
       "length = 44100; save a.wav; size a.wav = 44144; sample a.wav 22050 = 1234"},
      {"deletes in the middle",
       "start; hear 1 1000; hear 2 1000; hear 3 1000; stop; length = 132300; seek to 100000; "
       "delete from 44100 to 88200; length = 88200; position = 55900; seek to 50001; delete; "
       "length = 50000; save a.wav; size a.wav = 50044; sample a.wav 43000 = 1; "
       "sample a.wav 44600 = 3"},
      {"stopped it plays, records on and saves, but keeps its format until it is empty",
       "start; hear 100 1000; stop; set channels 2 !302; save \"/missing/rec4.wav\" !275; "
       "play from 0; mode = playing; stop; record; position = 44100; stop; "
       "delete from 0 to 44102 !282; delete from 0 to 44100; length = 0; set channels 2; close"},
      {"without a spool it refuses to record, and leaves no half of one",
       "spools 0; open new; record !286; mode = stopped; spools 1; room 20; record !286; "
       "size spool1 = none"},
      {"a full disk is told and the sound before it stays",
       "start; room 50000; hear 1000 1000; failure; hear 2000 1000; failure = the disk is full; "
       "stop; length = 88200; position = 88200; save a.wav !286; size a.wav.tmp = none; "
       "record !286; room 1000000; save a.wav; size a.wav = 88244; sample a.wav 43000 = 1000; "
       "sample a.wav 80000 = 0"},
      {"a failed save leaves the old file",
       "start; hear 1000 1000; stop; room 0; save empty.wav !286; room 20; save empty.wav !286; "
       "room 44; save empty.wav !286; room 45; save empty.wav !286; room 44143; "
       "save empty.wav !286; size empty.wav = 0; size empty.wav.tmp = none; room 44144; "
       "save empty.wav; size empty.wav = 44144"},
  };
  for (const auto& [name, script] : rows) EXPECT_EQ(SoundScript().run(script), script) << name;
}

/// How a script goes that opens "it.wav" or "dummy.mp3", both of which are these bytes.
std::string runWith(const Bytes& bytes, const std::string& script) {
  SoundScript device;
  device.rig.files.add("/s/it.wav", bytes);
  device.rig.files.add("/s/dummy.mp3", bytes);
  return device.run(script);
}

TEST(WavFile, OpensWhatIsThereOrNotAtAll) {
  const Bytes track = SoundRig::timingTrack(1);
  const Bytes cut(track.begin(), track.end() - 1);
  const std::string opens = "open dummy.mp3 as mpegvideo";
  EXPECT_EQ(runWith(track, opens), opens) << "one whole frame will do";
  for (const Bytes& no : {cut, Bytes(), SoundRig::wav(22050, 1, 1)}) {
    EXPECT_EQ(runWith(no, opens), opens + " !296");
  }
  const Bytes whole = SoundRig::wav(8000, 1, 1);
  for (std::size_t size = 0; size <= kPcmHeaderSize + 100; ++size) {
    const std::size_t sound = size < kPcmHeaderSize ? 0 : (size - kPcmHeaderSize) / 2 * 2;
    const std::string wanted = size < kPcmHeaderSize
                                   ? "open it.wav !296"
                                   : "open it.wav; bytes; length = " + std::to_string(sound) +
                                         "; save a.wav; same a.wav it.wav = yes";
    EXPECT_EQ(runWith({whole.begin(), whole.begin() + static_cast<long>(size)}, wanted), wanted);
  }
}

TEST(WavFile, ASaveInStepsTellsHowFarItIs) {
  SoundScript script;
  script.rig.files.add("/s/long.wav", SoundRig::wav(44100, 2, 20));
  script.run("open long.wav");
  {
    const SoundDevice::SaveStart started = script.rig.device.startSave("/s/a.wav");
    ASSERT_EQ(started.result, SoundResult::Done);
    EXPECT_EQ(started.save->step(), SoundSave::State::Saving);
    EXPECT_GT(started.save->progress(), 0.2);
    EXPECT_LT(started.save->progress(), 0.4);
  }
  EXPECT_EQ(script.run("size a.wav; size a.wav.tmp"), "size a.wav = none; size a.wav.tmp = none")
      << "given up half way";
}

void mutate(Bytes& bytes, std::size_t within, std::mt19937& random) {
  const int count = 1 + static_cast<int>(random() % 8);
  for (int change = 0; change < count; ++change) {
    bytes[random() % within] = static_cast<std::uint8_t>(random() % 4 == 0 ? 0xFF : random());
  }
  if (random() % 4 == 0) bytes.resize(random() % bytes.size());
}

/// What a sound thread would do with the stream that is open.
void play(SoundRig& rig) {
  constexpr std::uint32_t kMostChannels = 64;
  if (!rig.backend.playback || rig.backend.playback->format().channels > kMostChannels) return;
  std::vector<std::int16_t> heard(rig.backend.playback->format().channels * std::size_t{8});
  rig.backend.playback->streamStarted();
  rig.backend.playback->fill(rig.now, heard);
}

TEST(WavFile, SurvivesTenThousandCorruptFiles) {
  SoundScript script;
  std::mt19937 random(20240229);
  const Bytes wav = SoundRig::wav(8000, 2, 1);
  const Bytes track = SoundRig::timingTrack(20);
  int opened = 0;
  for (int round = 0; round < 10000; ++round) {
    Bytes file = round % 2 == 0 ? Bytes(wav.begin(), wav.begin() + 400) : track;
    mutate(file, round % 2 == 0 ? 60 : file.size(), random);
    script.rig.files.add("/s/dummy.mp3", std::move(file));
    const std::string open = round % 4 < 2 ? "open dummy.mp3" : "open dummy.mp3 as mpegvideo";
    const std::string went = script.run(open);
    if (went == open + " !296") continue;
    ASSERT_EQ(went, open);
    ++opened;
    script.run("length; seek to end; position");
    script.rig.backend.playback.reset();
    script.run("play from 0");
    play(script.rig);
    script.rig.pass(10);
    EXPECT_GE(script.rig.device.position(), 0);
    script.run("close");
  }
  EXPECT_TRUE(opened > 1000 && opened < 9000) << opened;
}

constexpr WaveFormat kFormat{22050, 1, 16, 44100, 2};

class SpoolTest : public testing::Test {
 protected:
  Bytes counted(std::size_t count, std::uint8_t first = 0) {
    Bytes bytes(count);
    std::iota(bytes.begin(), bytes.end(), first);
    return bytes;
  }
  const Bytes& file() { return *m_files.contents.at("/s/a"); }
  std::optional<WavLayout> layout() { return readWavLayout(*m_files.open("/s/a")); }
  Bytes sound() {
    const auto read = layout();
    if (!read) return {};
    const auto begin = file().begin() + static_cast<std::ptrdiff_t>(read->dataOffset);
    return {begin, begin + static_cast<std::ptrdiff_t>(read->dataSize)};
  }

  MemorySoundFiles m_files;
  Spool m_spool{"/s/a", m_files.create("/s/a"), kFormat};
};

TEST_F(SpoolTest, IsAWavFileFromTheStart) {
  EXPECT_EQ(hexOf(file()),
            "524946462C00000057415645666D742010000000010001002256000044AC000002001000"
            "71763373000000006461746100000000");
}

TEST_F(SpoolTest, ReadersGoByTheLengthNotByTheHeader) {
  m_spool.write(0, counted(1000));
  EXPECT_EQ(file()[48], 0) << "sizes are not rewritten for so little";
  EXPECT_EQ(sound(), counted(1000));
  m_spool.write(1000, Bytes(44100));
  EXPECT_EQ((Bytes{file()[48], file()[49], file()[50], file()[51]}), (Bytes{0x2C, 0xB0, 0, 0}));
}

TEST_F(SpoolTest, SilenceFillsGapsAndGivesWayToWhatComesLate) {
  m_spool.write(6, counted(4, 1));
  m_spool.extendTo(14);
  EXPECT_EQ(sound(), (Bytes{0, 0, 0, 0, 0, 0, 1, 2, 3, 4, 0, 0, 0, 0}));
  m_spool.write(10, counted(2, 9));
  EXPECT_EQ(sound(), (Bytes{0, 0, 0, 0, 0, 0, 1, 2, 3, 4, 9, 10, 0, 0}));
  EXPECT_EQ(m_spool.end(), 14U);
}

TEST_F(SpoolTest, TheFrontIsCutInPlace) {
  m_spool.write(0, counted(100));
  const std::size_t size = file().size();
  m_spool.remove(0, 40);
  EXPECT_EQ(file().size(), size);
  EXPECT_EQ(sound(), counted(60, 40));
  EXPECT_EQ(m_spool.where(), (SpoolPlace{"/s/a", 52 + 40, 60}));
  m_spool.remove(40, 50);
  EXPECT_EQ(sound(), counted(50, 50));
  m_spool.write(100, counted(4, 100));
  EXPECT_EQ(sound(), counted(54, 50)) << "places do not move";
}

TEST_F(SpoolTest, AnythingElseIsMovedTogether) {
  m_spool.write(0, counted(100));
  m_spool.remove(0, 4);  // too short to become a chunk
  EXPECT_EQ(sound(), counted(96, 4));
  m_spool.remove(90, 96);
  EXPECT_EQ(sound(), counted(90, 4));
  Bytes expected = counted(90, 4);
  expected.erase(expected.begin() + 10, expected.begin() + 20);
  m_spool.remove(10, 20);
  EXPECT_EQ(sound(), expected);
}

/// Wherever the disk is full, or the program is killed, the file reads well.
TEST(SpoolFailure, AtEveryByteLeavesAFileThatReads) {
  for (std::uint64_t room = 52; room < 300; ++room) {
    MemorySoundFiles files;
    files.room = room;
    Spool spool("/s/a", files.create("/s/a"), kFormat);
    for (std::uint64_t place = 0; place < 240; place += 20) spool.write(place, Bytes(20, 1));
    spool.extendTo(250);
    spool.remove(0, 40);
    EXPECT_EQ(spool.failure().empty(), room >= 52 + 250) << room;
    EXPECT_EQ(spool.end(), 250U);
    const auto layout = readWavLayout(*files.open("/s/a"));
    ASSERT_TRUE(layout) << room;
    EXPECT_TRUE(layout->isSpool);
    EXPECT_LE(layout->dataOffset + layout->dataSize, files.contents.at("/s/a")->size());
  }
}

TEST(PcmWidths, SixteenBitSamplesSurviveAllOfThem) {
  const std::vector<std::int16_t> samples = {0, 256, -256, 32512, -32768};
  for (const std::uint32_t bits : {8U, 16U, 24U, 32U}) {
    MemorySoundFiles files;
    Bytes bytes;
    appendPcm(samples, bits, bytes);
    files.add("/s/a", bytes);
    PcmReader reader(files.open("/s/a"), 0, {22050, 1, bits, 0, 0}, 5);
    std::vector<std::int16_t> read(7, 1);
    reader.read(0, read);
    EXPECT_EQ(std::vector<std::int16_t>(read.begin(), read.begin() + 5), samples) << bits;
    EXPECT_EQ(read[5], 0) << "silence behind the end";
  }
}

}  // namespace
}  // namespace qv3::test
