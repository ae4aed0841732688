#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>

#include "recording/littleendian.h"
#include "tests/support/soundrig.h"

namespace qv3::test {
namespace {

constexpr const char* kOpenTone = "open \"/s/tone5.wav\" type waveaudio alias WavFile";

std::int64_t number(SoundRig& rig, const std::string& item) {
  return std::stoll(rig.commands.send("status WavFile " + item).text);
}

Bytes bytesOf(SoundRig& rig, const std::string& path) {
  return *rig.files.contents.at(path);
}

std::int16_t sampleOf(const Bytes& wav, std::size_t byte) {
  return static_cast<std::int16_t>(getLittle<std::uint16_t>(wav, 44 + byte));
}

TEST(WavFile, PlaysInRealTimeToItsEnd) {
  SoundRig rig;
  rig.send(kOpenTone);
  rig.send("set WavFile time format bytes");
  rig.send("play WavFile from 44100");
  rig.pass(500);
  EXPECT_EQ(number(rig, "position"), 66150);
  rig.send("pause WavFile");
  rig.pass(10000);
  EXPECT_EQ(number(rig, "position"), 66150);
  rig.send("resume WavFile");
  rig.pass(3499);
  EXPECT_EQ(rig.send("status WavFile mode"), "0 playing");
  rig.pass(2);
  EXPECT_EQ(rig.send("status WavFile mode"), "0 stopped");
  EXPECT_EQ(number(rig, "position"), 220500);
}

TEST(WavFile, PlaysTo) {
  SoundRig rig;
  rig.send(kOpenTone);
  rig.send("play WavFile from 1000 to 2000");
  rig.pass(400);
  rig.send("pause WavFile");
  rig.send("resume WavFile");
  rig.pass(900);
  EXPECT_EQ(rig.send("status WavFile mode"), "0 stopped");
  EXPECT_EQ(number(rig, "position"), 2000);
}

TEST(WavFile, TheTimingTrackNeverEnds) {
  SoundRig rig;
  EXPECT_EQ(rig.send("open \"/s/dummy.mp3\" type mpegvideo alias WavFile"), "0 1");
  EXPECT_EQ(number(rig, "length"), 3000);
  EXPECT_EQ(rig.send("seek WavFile to 93600000"), "0");
  rig.send("play WavFile");
  rig.pass(10'000'000);
  EXPECT_EQ(number(rig, "position"), 103'600'000);
  EXPECT_EQ(rig.send("status WavFile mode"), "0 playing");
  EXPECT_EQ(rig.backend.playback, nullptr) << "silence needs no stream";
  rig.send("seek WavFile to end");
  EXPECT_EQ(number(rig, "position"), 3000);
}

TEST(WavFile, ATimingTrackNeedsOneWholeFrame) {
  SoundRig rig;
  Bytes track = SoundRig::timingTrack(1);
  const auto opened = [&rig](Bytes bytes) {
    rig.files.add("/s/dummy.mp3", std::move(bytes));
    const std::string answer = rig.send("open \"/s/dummy.mp3\" type mpegvideo alias WavFile");
    rig.send("close all");
    return answer;
  };
  EXPECT_EQ(opened(track), "0 1");
  track.pop_back();
  EXPECT_EQ(opened(track), "296");
  EXPECT_EQ(opened({}), "296");
  EXPECT_EQ(opened(SoundRig::wav(22050, 1, 1)), "296");
}

TEST(WavFile, RecordsWhatIsHeardAndSavesItAsOften) {
  SoundRig rig;
  rig.startRecording();
  rig.hear(1000, 1000);
  rig.hear(-2000, 1000);
  EXPECT_NEAR(static_cast<double>(number(rig, "position")), 88200, 0.005 * 44100);
  rig.send("stop WavFile");
  const std::int64_t length = number(rig, "length");
  EXPECT_EQ(rig.send("save WavFile \"/s/one.wav\""), "0");
  EXPECT_EQ(rig.send("seek WavFile to start"), "0");
  EXPECT_EQ(rig.send("delete WavFile from 0 to 44100"), "0");
  EXPECT_EQ(number(rig, "length"), length - 44100);
  EXPECT_EQ(rig.send("save WavFile \"/s/two.wav\""), "0");

  const Bytes one = bytesOf(rig, "/s/one.wav");
  const Bytes two = bytesOf(rig, "/s/two.wav");
  const Bytes header = {'R', 'I', 'F',  'F',  0xAC, 0x58, 0x01, 0,    'W',  'A',  'V',
                        'E', 'f', 'm',  't',  ' ',  16,   0,    0,    0,    1,    0,
                        1,   0,   0x22, 0x56, 0,    0,    0x44, 0xAC, 0,    0,    2,
                        0,   16,  0,    'd',  'a',  't',  'a',  0x88, 0x58, 0x01, 0};
  EXPECT_EQ(length, 0x15888);
  EXPECT_EQ(Bytes(one.begin(), one.begin() + 44), header);
  EXPECT_EQ(one.size(), 44 + 88200U);
  EXPECT_EQ(sampleOf(one, 22050), 1000);
  EXPECT_EQ(sampleOf(one, 66150), -2000);
  EXPECT_TRUE(std::equal(two.begin() + 44, two.end(), one.begin() + 44 + 44100, one.end()));
  EXPECT_EQ(rig.files.contents.count("/s/one.wav.tmp"), 0U);
}

TEST(WavFile, WhatIsOnTheWayAtStopStillComesIn) {
  SoundRig rig;
  rig.startRecording();
  rig.hear(1000, 2000);
  rig.pass(15);
  rig.send("stop WavFile");
  const std::int64_t length = number(rig, "length");
  rig.send("delete WavFile from 0 to 44100");
  rig.send("save WavFile \"/s/early.wav\"");
  rig.pass(5);
  EXPECT_FALSE(rig.device.isComplete());
  rig.deliver(3000, 20);
  EXPECT_TRUE(rig.device.isComplete());
  ASSERT_TRUE(rig.backend.microphone);
  rig.pass(500);
  EXPECT_EQ(number(rig, "length"), length - 44100);
  EXPECT_FALSE(rig.backend.microphone->wanted(rig.now));
  rig.send("save WavFile \"/s/late.wav\"");
  const std::size_t last = static_cast<std::size_t>(length - 44100 - 2);
  EXPECT_EQ(sampleOf(bytesOf(rig, "/s/early.wav"), last), 0);
  EXPECT_EQ(sampleOf(bytesOf(rig, "/s/late.wav"), last), 3000);
}

TEST(WavFile, WithoutAMicrophoneItRecordsSilence) {
  SoundRig rig;
  rig.startRecording();
  rig.pass(3000);
  EXPECT_EQ(number(rig, "position"), 132300);
  rig.send("stop WavFile");
  rig.pass(199);
  EXPECT_FALSE(rig.device.isComplete());
  rig.pass(1);
  EXPECT_TRUE(rig.device.isComplete()) << "it has waited long enough";
  rig.send("save WavFile \"/s/a.wav\"");
  const Bytes saved = bytesOf(rig, "/s/a.wav");
  EXPECT_EQ(saved.size(), 44 + 132300U);
  EXPECT_TRUE(std::all_of(saved.begin() + 44, saved.end(), [](auto byte) { return byte == 0; }));
}

TEST(WavFile, EightBitSilenceIsTheMiddle) {
  SoundRig rig;
  rig.send("open new type waveaudio alias WavFile");
  rig.send("record WavFile");
  rig.pass(1000);
  rig.send("stop WavFile");
  rig.send("save WavFile \"/s/a.wav\"");
  const Bytes saved = bytesOf(rig, "/s/a.wav");
  EXPECT_EQ(saved.size(), 44 + 11025U);
  EXPECT_TRUE(std::all_of(saved.begin() + 44, saved.end(), [](auto byte) { return byte == 0x80; }));
}

TEST(WavFile, ALostSecondIsSilenceOfASecond) {
  SoundRig rig;
  rig.startRecording();
  rig.hear(1000, 1000);
  rig.pass(1000);
  rig.hear(2000, 1000);
  rig.send("stop WavFile");
  rig.send("save WavFile \"/s/a.wav\"");
  const Bytes saved = bytesOf(rig, "/s/a.wav");
  EXPECT_EQ(sampleOf(saved, 43000), 1000);
  EXPECT_EQ(sampleOf(saved, 66150), 0);
  EXPECT_EQ(sampleOf(saved, 87000), 0);
  EXPECT_EQ(sampleOf(saved, 89400), 2000);
}

TEST(WavFile, SoundThatCameLateIsNotTornApart) {
  SoundRig rig;
  rig.startRecording();
  rig.hear(1000, 1000);
  rig.pass(1000);
  for (int burst = 0; burst < 50; ++burst) rig.deliver(2000, 20);
  rig.hear(3000, 1000);
  rig.send("stop WavFile");
  rig.send("save WavFile \"/s/a.wav\"");
  const Bytes saved = bytesOf(rig, "/s/a.wav");
  EXPECT_EQ(sampleOf(saved, 43000), 1000);
  EXPECT_EQ(sampleOf(saved, 45200), 2000);
  EXPECT_EQ(sampleOf(saved, 87000), 2000);
  EXPECT_EQ(sampleOf(saved, 89400), 3000);
}

TEST(WavFile, PausedItRecordsNothingAndGoesOnWithoutAGap) {
  SoundRig rig;
  rig.startRecording();
  rig.hear(1000, 1000);
  rig.send("pause WavFile");
  const std::int64_t paused = number(rig, "position");
  rig.pass(5000);
  EXPECT_EQ(number(rig, "length"), paused);
  rig.send("resume WavFile");
  rig.hear(2000, 1000);
  EXPECT_EQ(number(rig, "position"), paused + 44100);
  EXPECT_EQ(number(rig, "length"), paused + 44100);
}

TEST(WavFile, CloseLosesNothing) {
  SoundRig rig;
  rig.startRecording();
  rig.hear(1234, 1000);
  rig.send("close WavFile");
  const auto spool = rig.device.spool();
  ASSERT_TRUE(spool);
  EXPECT_EQ(*spool, (SpoolPlace{"/s/spool1", 52, 44100}));
  EXPECT_EQ(rig.send("open \"/s/spool1\" type waveaudio alias WavFile"), "0 1");
  rig.send("set WavFile time format bytes");
  EXPECT_EQ(number(rig, "length"), 44100);
  rig.send("save WavFile \"/s/a.wav\"");
  const Bytes saved = bytesOf(rig, "/s/a.wav");
  EXPECT_EQ(saved.size(), 44 + 44100U);
  EXPECT_EQ(sampleOf(saved, 22050), 1234);
}

TEST(WavFile, DeletesInTheMiddle) {
  SoundRig rig;
  rig.startRecording();
  rig.hear(1, 1000);
  rig.hear(2, 1000);
  rig.hear(3, 1000);
  rig.send("stop WavFile");
  const std::int64_t length = number(rig, "length");
  rig.send("seek WavFile to 100000");
  EXPECT_EQ(rig.send("delete WavFile from 44100 to 88200"), "0");
  EXPECT_EQ(number(rig, "length"), length - 44100);
  EXPECT_EQ(number(rig, "position"), 100000 - 44100);
  EXPECT_EQ(rig.send("seek WavFile to 50001"), "0");
  EXPECT_EQ(rig.send("delete WavFile"), "0");
  EXPECT_EQ(number(rig, "length"), 50000);
  rig.send("save WavFile \"/s/a.wav\"");
  const Bytes saved = bytesOf(rig, "/s/a.wav");
  EXPECT_EQ(saved.size(), 44 + 50000U);
  EXPECT_EQ(sampleOf(saved, 43000), 1);
  EXPECT_EQ(sampleOf(saved, 44600), 3);
}

TEST(WavFile, WithoutASpoolItRefusesToRecord) {
  SoundRig rig;
  rig.spoolPossible = false;
  rig.send("open new type waveaudio alias WavFile");
  EXPECT_EQ(rig.send("record WavFile"), "286");
  EXPECT_EQ(rig.send("status WavFile mode"), "0 stopped");
  rig.spoolPossible = true;
  rig.files.room = 20;
  EXPECT_EQ(rig.send("record WavFile"), "286");
  EXPECT_EQ(rig.files.contents.count("/s/spool1"), 0U) << "half a header is no use to anybody";
}

TEST(WavFile, AFullDiskIsToldAndTheSoundBeforeItStays) {
  SoundRig rig;
  rig.startRecording();
  rig.files.room = 50000;
  rig.hear(1000, 1000);
  EXPECT_EQ(rig.device.failure(), "");
  rig.hear(2000, 1000);
  EXPECT_EQ(rig.device.failure(), "the disk is full");
  rig.send("stop WavFile");
  EXPECT_EQ(number(rig, "length"), number(rig, "position"));
  EXPECT_EQ(rig.send("save WavFile \"/s/a.wav\""), "286");
  EXPECT_EQ(rig.files.contents.count("/s/a.wav.tmp"), 0U);
  EXPECT_EQ(rig.send("record WavFile"), "286");
  rig.files.room = 1'000'000;
  EXPECT_EQ(rig.send("save WavFile \"/s/a.wav\""), "0");
  const Bytes saved = bytesOf(rig, "/s/a.wav");
  EXPECT_EQ(static_cast<std::int64_t>(saved.size()), 44 + number(rig, "length"));
  EXPECT_EQ(sampleOf(saved, 43000), 1000);
  EXPECT_EQ(sampleOf(saved, 80000), 0);
}

TEST(WavFile, AFailedSaveLeavesTheOldFile) {
  SoundRig rig;
  rig.startRecording();
  rig.hear(1000, 1000);
  rig.send("stop WavFile");
  const Bytes before = {1, 2, 3};
  rig.files.add("/s/a.wav", before);
  for (const std::uint64_t room : {0, 20, 44, 45, 44143}) {
    rig.files.room = room;
    EXPECT_EQ(rig.send("save WavFile \"/s/a.wav\""), "286") << room;
    EXPECT_EQ(bytesOf(rig, "/s/a.wav"), before) << room;
    EXPECT_EQ(rig.files.contents.count("/s/a.wav.tmp"), 0U) << room;
  }
}

TEST(WavFile, AnOpenedFileIsCopied) {
  SoundRig rig;
  Bytes odd = SoundRig::wav(22050, 1, 3);
  odd.resize(odd.size() - 1001);
  rig.files.add("/s/odd.wav", odd);
  rig.send("open \"/s/odd.wav\" type waveaudio alias WavFile");
  rig.send("set WavFile time format bytes");
  EXPECT_EQ(number(rig, "length"), 132300 - 1002) << "whole blocks of what is there";
  EXPECT_EQ(rig.send("save WavFile \"/s/a.wav\""), "0");
  EXPECT_EQ(bytesOf(rig, "/s/a.wav"), odd);
}

TEST(WavFile, ASaveInStepsTellsHowFarItIs) {
  SoundRig rig;
  rig.files.add("/s/long.wav", SoundRig::wav(44100, 2, 20));
  rig.send("open \"/s/long.wav\" type waveaudio alias WavFile");
  {
    const SoundDevice::SaveStart started = rig.device.startSave("/s/a.wav");
    ASSERT_EQ(started.result, SoundResult::Done);
    EXPECT_EQ(started.save->step(), SoundSave::State::Saving);
    EXPECT_GT(started.save->progress(), 0.2);
    EXPECT_LT(started.save->progress(), 0.4);
  }
  EXPECT_EQ(rig.files.contents.count("/s/a.wav"), 0U) << "given up half way";
  EXPECT_EQ(rig.files.contents.count("/s/a.wav.tmp"), 0U);
}

/// Every prefix opens as what is there, or not at all.
TEST(WavFile, EveryTruncationOpensAsWhatIsThereOrNotAtAll) {
  SoundRig rig;
  Bytes whole = SoundRig::wav(8000, 1, 1);
  whole.resize(44 + 100);
  for (std::size_t size = 0; size <= whole.size(); ++size) {
    rig.files.add("/s/cut.wav", Bytes(whole.begin(), whole.begin() + static_cast<long>(size)));
    const std::string answer = rig.send("open \"/s/cut.wav\" type waveaudio alias WavFile");
    EXPECT_EQ(answer, size < 44 ? "296" : "0 1") << size;
    if (size < 44) continue;
    rig.send("set WavFile time format bytes");
    EXPECT_EQ(number(rig, "length"), static_cast<std::int64_t>((size - 44) / 2 * 2)) << size;
    rig.send("close WavFile");
  }
}

void mutate(Bytes& bytes, std::size_t within, std::mt19937& random) {
  const int count = 1 + static_cast<int>(random() % 8);
  for (int change = 0; change < count; ++change) {
    bytes[random() % within] = static_cast<std::uint8_t>(random() % 4 == 0 ? 0xFF : random());
  }
  if (random() % 4 == 0) bytes.resize(random() % bytes.size());
}

TEST(WavFile, SurvivesTenThousandCorruptFiles) {
  SoundRig rig;
  std::mt19937 random(20240229);
  const Bytes wav = SoundRig::wav(8000, 2, 1);
  const Bytes track = SoundRig::timingTrack(20);
  std::vector<std::int16_t> heard(64);
  int opened = 0;
  for (int round = 0; round < 10000; ++round) {
    Bytes file = round % 2 == 0 ? Bytes(wav.begin(), wav.begin() + 400) : track;
    mutate(file, round % 2 == 0 ? 60 : file.size(), random);
    rig.files.add("/s/dummy.mp3", std::move(file));
    const char* type = round % 4 < 2 ? "waveaudio" : "mpegvideo";
    const std::string answer =
        rig.send("open \"/s/dummy.mp3\" type " + std::string(type) + " alias WavFile");
    ASSERT_TRUE(answer == "296" || answer == "0 1") << answer;
    if (answer == "296") continue;
    ++opened;
    rig.send("status WavFile length");
    rig.send("seek WavFile to end");
    rig.send("status WavFile position");
    rig.backend.playback.reset();
    rig.send("play WavFile from 0");
    if (rig.backend.playback && rig.backend.playback->format().channels <= heard.size()) {
      heard.resize(rig.backend.playback->format().channels * 8);
      rig.backend.playback->streamStarted();
      rig.backend.playback->fill(rig.now, heard);
      heard.resize(64);
    }
    rig.pass(10);
    EXPECT_GE(number(rig, "position"), 0);
    rig.send("close WavFile");
  }
  EXPECT_GT(opened, 1000);
  EXPECT_LT(opened, 9000);
}

}  // namespace
}  // namespace qv3::test
