#include <gtest/gtest.h>

#include <QFile>
#include <QTest>
#include <cmath>
#include <numbers>
#include <span>
#include <vector>

#include "platform/sound/soundthread.h"
#include "platform/sound/steadynow.h"
#include "recording/sound/disksoundfiles.h"
#include "recording/sound/wavfile.h"
#include "recording/soundcommands.h"
#include "tests/platform_sound/pulseserver.h"
#include "tests/support/patience.h"

namespace qv3::test {
namespace {

constexpr double kTone = 700;
using Samples = std::vector<std::int16_t>;

Samples tone(double seconds, double rate) {
  Samples samples(static_cast<std::size_t>(seconds * rate));
  for (std::size_t index = 0; index < samples.size(); ++index) {
    const double angle = 2 * std::numbers::pi * kTone * static_cast<double>(index) / rate;
    samples[index] = static_cast<std::int16_t>(8000 * std::sin(angle));
  }
  return samples;
}

Samples toSamples(const QByteArray& bytes) {
  Samples samples(static_cast<std::size_t>(bytes.size()) / 2);
  std::memcpy(samples.data(), bytes.constData(), samples.size() * 2);
  return samples;
}

Samples readWav(const QString& path) {
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly)) return {};
  return toSamples(file.readAll().mid(44));
}

/// The amplitude of the tone in a stretch of sound.
double toneIn(std::span<const std::int16_t> samples, double rate) {
  double real = 0;
  double imaginary = 0;
  for (std::size_t index = 0; index < samples.size(); ++index) {
    const double angle = 2 * std::numbers::pi * kTone * static_cast<double>(index) / rate;
    real += samples[index] * std::cos(angle);
    imaginary += samples[index] * std::sin(angle);
  }
  return 2 * std::hypot(real, imaginary) / static_cast<double>(samples.size());
}

double toneAt(const Samples& samples, double second, double rate) {
  const auto begin = static_cast<std::size_t>(second * rate);
  const auto count = static_cast<std::size_t>(rate / 10);
  if (begin + count > samples.size()) return -1;
  return toneIn(std::span(samples).subspan(begin, count), rate);
}

/// How many tenths of a second the tone is heard.
int tenthsOfTone(const Samples& samples, double rate) {
  int tenths = 0;
  for (double second = 0; toneAt(samples, second, rate) >= 0; second += 0.1) {
    if (toneAt(samples, second, rate) > 6000) ++tenths;
  }
  return tenths;
}

class SoundServer : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    s_server = std::make_unique<PulseServer>();
    s_server->useHere();
    s_sound = std::make_unique<SoundThread>();
    ASSERT_TRUE(s_server->start());
  }
  static void TearDownTestSuite() {
    EXPECT_TRUE(s_sound->shutDown());
    s_sound.reset();
    s_server.reset();
  }

  void SetUp() override {
    QFile file(path("tone.raw"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    const Samples samples = tone(60, 44100);
    file.write(reinterpret_cast<const char*>(samples.data()),
               static_cast<qint64>(samples.size() * 2));
  }

  static QString path(const QString& name) { return s_server->folder() + "/" + name; }

  int send(const std::string& command) { return m_commands.send(command).code; }
  std::int64_t position() { return std::stoll(m_commands.send("status WavFile position").text); }
  bool waitForSecond(double second) {
    return QTest::qWaitFor([&] { return static_cast<double>(position()) >= second * 44100; },
                           kPatienceMs);
  }
  void record() {
    send("close WavFile");
    ASSERT_EQ(send("open new type waveaudio alias WavFile"), 0);
    ASSERT_EQ(send("set WavFile bitspersample 16 channels 1 alignment 2 samplespersec 22050 "
                   "bytespersec 44100 time format bytes format tag pcm wait"),
              0);
    ASSERT_EQ(send("record WavFile"), 0);
  }
  Samples stopAndSave(const QString& name) {
    EXPECT_EQ(send("stop WavFile"), 0);
    EXPECT_EQ(send("seek WavFile to start"), 0);
    EXPECT_EQ(send("save WavFile \"" + path(name).toStdString() + "\""), 0);
    return readWav(path(name));
  }

  static std::unique_ptr<PulseServer> s_server;
  static std::unique_ptr<SoundThread> s_sound;

  DiskSoundFiles m_files;
  WavFile m_device{
      {*s_sound, m_files, steadyNow,
       [this] { return path("spool" + QString::number(steadyNow().count())).toStdString(); },
       "/nowhere/dummy.mp3"}};
  SoundCommands m_commands{m_device};
};

std::unique_ptr<PulseServer> SoundServer::s_server;
std::unique_ptr<SoundThread> SoundServer::s_sound;

TEST_F(SoundServer, TheRoomIsRecordedAndHeardAgain) {
  const auto player = s_server->play(path("tone.raw"));
  ASSERT_TRUE(player);
  record();
  ASSERT_TRUE(waitForSecond(3.0));
  end(*player);
  const Samples recorded = stopAndSave("room.wav");
  for (const double second : {1.0, 1.5, 2.0, 2.5}) {
    EXPECT_NEAR(toneAt(recorded, second, 22050), 8000, 400) << second;
  }

  const auto heard = s_server->listen();
  ASSERT_TRUE(heard && heard->waitForReadyRead(kPatienceMs));
  const SoundTime before = steadyNow();
  EXPECT_EQ(send("play WavFile from 44100"), 0);
  const SoundTime began = steadyNow();
  SoundTime asked = began;  // for the last time that it still played
  ASSERT_TRUE(QTest::qWaitFor(
      [&] {
        const SoundTime now = steadyNow();
        const bool over = m_commands.send("status WavFile mode").text == "stopped";
        if (!over) asked = now;
        return over;
      },
      kPatienceMs));
  const double length = static_cast<double>(recorded.size()) / 22050 - 1;
  EXPECT_GE(std::chrono::duration<double>(steadyNow() - before).count(), length - 0.1);
  EXPECT_LE(std::chrono::duration<double>(asked - began).count(), length + 0.1);
  ASSERT_TRUE(heard->waitForReadyRead(kPatienceMs));
  const Samples again = toSamples(heard->readAllStandardOutput());
  end(*heard);
  EXPECT_GE(tenthsOfTone(again, 44100), 15) << "two seconds were played";
}

}  // namespace
}  // namespace qv3::test
