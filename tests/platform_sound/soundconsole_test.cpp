#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

namespace qv3::test {
namespace {

/// One run of sound-console without a sound server.
QByteArrayList converse(const QByteArray& input, const QStringList& arguments, qint64* took) {
  QProcess console;
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  environment.insert("PULSE_SERVER", "unix:/nowhere/socket");
  console.setProcessEnvironment(environment);
  QElapsedTimer timer;
  timer.start();
  console.start(SOUND_CONSOLE, arguments);
  console.write(input);
  console.closeWriteChannel();
  EXPECT_TRUE(console.waitForFinished(20000));
  if (took) *took = timer.elapsed();
  EXPECT_EQ(console.exitCode(), 0);
  EXPECT_EQ(console.readAllStandardError(), "");
  return console.readAllStandardOutput().split('\n');
}

TEST(SoundConsole, AnswersEveryCommandWithALine) {
  QTemporaryDir folder;
  ASSERT_TRUE(QFile::copy(TIMING_TRACK, folder.filePath("dummy.mp3")));
  const QByteArray track = folder.filePath("dummy.mp3").toUtf8();
  const QByteArray saved = folder.filePath("a.wav").toUtf8();
  qint64 took = 0;
  const QByteArrayList lines =
      converse("close WavFile\n\nopen \"" + track + "\" type mpegvideo alias WavFile\r\nsleep 0\n" +
                   "seek WavFile to 100000\nplay WavFile\nsleep 500\nstatus WavFile mode\n" +
                   "close all\nopen new type waveaudio alias WavFile\nrecord WavFile\nsleep 500\n" +
                   "stop WavFile\nsave WavFile \"" + saved + "\"\n   \n",
               {"--data", folder.path()}, &took);
  const QByteArrayList expected = {"263 ", "0 1", "0 ", "0 ", "0 playing", "0 ",
                                   "0 1",  "0 ",  "0 ", "0 ", "267 ",      ""};
  EXPECT_EQ(lines, expected);
  EXPECT_GE(took, 1000);
  EXPECT_GE(QFile(saved).size() - 44, 5450) << "half a second at 11025 bytes a second";
  EXPECT_LE(QFile(saved).size() - 44, (took - 500) * 11025 / 1000) << "and no more than passed";
}

TEST(SoundConsole, FindsTheTimingTrackBesideItself) {
  const QByteArrayList lines =
      converse("open \"" TIMING_TRACK
               "\" type mpegvideo alias WavFile\nseek WavFile to 5000\nstatus WavFile position\n",
               {}, nullptr);
  EXPECT_EQ(lines, (QByteArrayList{"0 1", "0 ", "0 5000", ""}));
}

}  // namespace
}  // namespace qv3::test
