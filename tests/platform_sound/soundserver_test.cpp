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

QByteArray bytesOf(const Samples& samples) {
  return {reinterpret_cast<const char*>(samples.data()),
          static_cast<qsizetype>(samples.size() * 2)};
}

Samples samplesOf(const QByteArray& bytes) {
  Samples samples(static_cast<std::size_t>(bytes.size()) / 2);
  std::memcpy(samples.data(), bytes.constData(), samples.size() * 2);
  return samples;
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
  QString path(const QString& name) const { return m_server.folder() + "/" + name; }

  MediaReply send(const std::string& command) { return m_commands.send(command); }
  void expectDone(const std::string& command) { EXPECT_EQ(send(command).code, 0) << command; }

  /// And saves them.
  Samples recordThreeSeconds();
  /// What comes after the first second: it takes so long, and no longer.
  void expectPlayed(double seconds);

  PulseServer m_server;
  SoundThread m_sound;
  DiskSoundFiles m_files;
  WavFile m_device{{m_sound, m_files, steadyNow, [this] { return path("spool").toStdString(); },
                    "/nowhere/dummy.mp3"}};
  SoundCommands m_commands{m_device};
};

Samples SoundServer::recordThreeSeconds() {
  expectDone("open new type waveaudio alias WavFile");
  expectDone(
      "set WavFile bitspersample 16 channels 1 alignment 2 samplespersec 22050 bytespersec 44100 "
      "time format bytes format tag pcm wait");
  expectDone("record WavFile");
  EXPECT_TRUE(QTest::qWaitFor(
      [&] { return std::stoll(send("status WavFile position").text) >= 3 * 44100; }, kPatienceMs));
  expectDone("stop WavFile");
  expectDone("seek WavFile to start");
  expectDone("save WavFile \"" + path("room.wav").toStdString() + "\"");
  QFile saved(path("room.wav"));
  EXPECT_TRUE(saved.open(QIODevice::ReadOnly));
  return samplesOf(saved.readAll().mid(44));
}

void SoundServer::expectPlayed(double seconds) {
  const SoundTime before = steadyNow();
  expectDone("play WavFile from 44100");
  const SoundTime began = steadyNow();
  SoundTime asked = began;  // for the last time that it still played
  ASSERT_TRUE(QTest::qWaitFor(
      [&] {
        const SoundTime now = steadyNow();
        const bool over = send("status WavFile mode").text == "stopped";
        if (!over) asked = now;
        return over;
      },
      kPatienceMs));
  EXPECT_GE(std::chrono::duration<double>(steadyNow() - before).count(), seconds - 0.1);
  EXPECT_LE(std::chrono::duration<double>(asked - began).count(), seconds + 0.1);
}

TEST_F(SoundServer, TheRoomIsRecordedAndHeardAgain) {
  m_server.useHere();
  ASSERT_TRUE(m_server.start());
  QFile file(path("tone.raw"));
  ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytesOf(tone(60, 44100))) > 0);
  file.close();
  const auto player = m_server.play(file.fileName());
  ASSERT_TRUE(player);
  const Samples recorded = recordThreeSeconds();
  end(*player);
  EXPECT_EQ(std::to_string(recorded.size() * 2), send("status WavFile length").text);
  for (const double second : {1.0, 1.5, 2.0, 2.5}) {
    EXPECT_NEAR(toneAt(recorded, second, 22050), 8000, 400) << second;
  }

  const auto heard = m_server.listen();
  ASSERT_TRUE(heard && heard->waitForReadyRead(kPatienceMs));
  expectPlayed(static_cast<double>(recorded.size()) / 22050 - 1);
  ASSERT_TRUE(heard->waitForReadyRead(kPatienceMs));
  const Samples again = samplesOf(heard->readAllStandardOutput());
  end(*heard);
  EXPECT_GE(tenthsOfTone(again, 44100), 15) << "two seconds were played";
  expectDone("close WavFile");
  EXPECT_TRUE(m_sound.shutDown());
}

}  // namespace
}  // namespace qv3::test
