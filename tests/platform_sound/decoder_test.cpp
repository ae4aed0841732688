#include <gtest/gtest.h>
#include <sndfile.h>

#include <QFile>
#include <QTemporaryDir>
#include <cmath>
#include <random>

#include "platform/sound/sndfilereader.h"
#include "platform/sound/soundthread.h"
#include "platform/sound/steadynow.h"
#include "recording/sound/disksoundfiles.h"
#include "recording/sound/wavfile.h"
#include "recording/soundcommands.h"

namespace qv3::test {
namespace {

class DecoderTest : public testing::Test {
 protected:
  std::string path(const QString& name) const { return m_folder.filePath(name).toStdString(); }

  /// A tone of 440 Hz at 22050 Hz, of half the full scale.
  void writeTone(const std::string& file, int format, double seconds,
                 int mode = SF_BITRATE_MODE_VARIABLE) {
    SF_INFO info{};
    info.samplerate = 22050;
    info.channels = 1;
    info.format = format;
    SNDFILE* handle = sf_open(file.c_str(), SFM_WRITE, &info);
    ASSERT_NE(handle, nullptr) << sf_strerror(nullptr);
    sf_command(handle, SFC_SET_BITRATE_MODE, &mode, sizeof mode);
    std::vector<float> samples(static_cast<std::size_t>(seconds * 22050));
    for (std::size_t index = 0; index < samples.size(); ++index) {
      samples[index] = 0.5F * std::sin(2 * 3.14159265F * 440 * static_cast<float>(index) / 22050);
    }
    sf_writef_float(handle, samples.data(), static_cast<sf_count_t>(samples.size()));
    sf_close(handle);
  }

  QByteArray read(const QString& name) const {
    QFile file(m_folder.filePath(name));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    return file.readAll();
  }
  void write(const QString& name, const QByteArray& bytes) const {
    QFile file(m_folder.filePath(name));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
  }

  std::string send(const std::string& command) {
    const MediaReply reply = m_commands.send(command);
    return std::to_string(reply.code) + (reply.text.empty() ? "" : " " + reply.text);
  }
  std::string open(const std::string& file, const std::string& type = "mpegvideo") {
    return send("open \"" + file + "\" type " + type + " alias WavFile");
  }
  double length() { return std::stod(m_commands.send("status WavFile length").text); }

  QTemporaryDir m_folder;
  SoundThread m_sound;
  DiskSoundFiles m_files;
  WavFile m_device{{m_sound, m_files, steadyNow, [] { return std::string(); }, TIMING_TRACK}};
  SoundCommands m_commands{m_device};
};

double loudness(SoundReader& reader, std::int64_t from) {
  std::vector<std::int16_t> samples(4410);
  reader.read(from, samples);
  double sum = 0;
  for (const std::int16_t sample : samples) sum += sample * sample;
  return std::sqrt(sum / static_cast<double>(samples.size()));
}

TEST_F(DecoderTest, CompressedFilesAreSixteenBitSound) {
  const struct {
    const char* name;
    int format;
    const char* type;
  } rows[] = {
      {"a.mp3", SF_FORMAT_MPEG | SF_FORMAT_MPEG_LAYER_III, "mpegvideo"},
      {"float.wav", SF_FORMAT_WAV | SF_FORMAT_FLOAT, "waveaudio"},
      {"mulaw.wav", SF_FORMAT_WAV | SF_FORMAT_ULAW, "waveaudio"},
      {"adpcm.wav", SF_FORMAT_WAV | SF_FORMAT_MS_ADPCM, "waveaudio"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    writeTone(path(row.name), row.format, 3);
    EXPECT_EQ(open(path(row.name), row.type), "0 1");
    EXPECT_NEAR(length(), 3000, 100);
    if (std::string(row.type) == "waveaudio") {
      EXPECT_EQ(send("status WavFile bitspersample"), "0 16");
      EXPECT_EQ(send("status WavFile bytespersec"), "0 44100");
    }
    EXPECT_EQ(send("close WavFile"), "0");
    const auto reader = SndFileReader::open(path(row.name));
    ASSERT_TRUE(reader);
    for (const std::int64_t from : {0, 33000, 4410, 61000}) {
      EXPECT_NEAR(loudness(*reader, from), 32768 * 0.5 / std::sqrt(2), 1200) << from;
    }
    EXPECT_EQ(loudness(*reader, reader->frames() + 10), 0);
  }
}

TEST_F(DecoderTest, TheLengthOfAnMp3IsThatOfItsFrames) {
  writeTone(path("a.mp3"), SF_FORMAT_MPEG | SF_FORMAT_MPEG_LAYER_III, 3, SF_BITRATE_MODE_CONSTANT);
  const QByteArray good = read("a.mp3");
  const QByteArray half = good.left(good.size() / 2);
  QByteArray tag("ID3\4\0\0\0\0\x17\x68", 10);  // 3048 bytes follow
  tag.append(QByteArray(3048, 'x'));
  const struct {
    QByteArray bytes;
    double length;
  } rows[] = {
      {tag + good, 3000},
      {QByteArray(3000, '\0') + good, 3000},
      {good + QByteArray("TAG").leftJustified(128, ' '), 3000},
      {half, 1500},
      {half + QByteArray(700, '\0') + good.mid(half.size()), 3000},
  };
  for (const auto& row : rows) {
    write("b.mp3", row.bytes);
    EXPECT_EQ(open(path("b.mp3")), "0 1");
    EXPECT_NEAR(length(), row.length, 100) << &row - rows;
    send("close WavFile");
  }
}

TEST_F(DecoderTest, OtherFilesAreRefused) {
  writeTone(path("a.flac"), SF_FORMAT_FLAC | SF_FORMAT_PCM_16, 1);
  std::mt19937 random(5);
  QByteArray noise(200000, '\0');
  for (char& byte : noise) byte = static_cast<char>(random());
  write("noise.mp3", noise);
  for (const char* name : {"a.flac", "noise.mp3"}) EXPECT_EQ(open(path(name)), "296") << name;
}

TEST_F(DecoderTest, TheTimingTrackOfTheBuildIsValidSilence) {
  EXPECT_EQ(open(TIMING_TRACK), "0 1");
  EXPECT_EQ(length(), 3000);
  const auto reader = SndFileReader::open(TIMING_TRACK);
  ASSERT_TRUE(reader);
  EXPECT_NEAR(static_cast<double>(reader->frames()), 3 * 48000, 4800);
  EXPECT_EQ(loudness(*reader, 0), 0);
  EXPECT_EQ(loudness(*reader, 70000), 0);
}

TEST_F(DecoderTest, SurvivesTenThousandCorruptFiles) {
  writeTone(path("a.mp3"), SF_FORMAT_MPEG | SF_FORMAT_MPEG_LAYER_III, 0.25);
  const QByteArray good = read("a.mp3");
  std::mt19937 random(20240229);
  std::vector<std::int16_t> heard(256);
  int opened = 0;
  QFile file(m_folder.filePath("b.mp3"));
  ASSERT_TRUE(file.open(QIODevice::ReadWrite | QIODevice::Unbuffered));
  for (int round = 0; round < 10000; ++round) {
    QByteArray bytes = good;
    for (unsigned change = 0; change <= random() % 12; ++change) {
      const unsigned within = round % 2 == 0 ? 64U : static_cast<unsigned>(bytes.size());
      bytes[static_cast<qsizetype>(random() % within)] = static_cast<char>(random());
    }
    if (round % 5 == 0) bytes.truncate(static_cast<qsizetype>(random() % 2000));
    // Emptied and written anew, a file would be put on the disk every time.
    ASSERT_TRUE(file.seek(0) && file.write(bytes) == bytes.size() && file.resize(bytes.size()));
    const std::string answer = open(path("b.mp3"));
    ASSERT_TRUE(answer == "0 1" || answer == "296") << answer;
    if (answer == "296") continue;
    ++opened;
    const auto reader = SndFileReader::open(path("b.mp3"));
    ASSERT_TRUE(reader);
    heard.resize(reader->channels() * 128);
    reader->read(reader->frames() / 2, heard);
    EXPECT_EQ(send("seek WavFile to end"), "0");
    EXPECT_EQ(send("close WavFile"), "0");
  }
  EXPECT_GT(opened, 2000);
}

}  // namespace
}  // namespace qv3::test
