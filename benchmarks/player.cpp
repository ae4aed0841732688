// bench-player FILE: plays a ".wav" of 16-bit sound at 22050 Hz in one channel again and again, and
// does nothing else: the least that hearing it takes.

#include <QAudioFormat>
#include <QAudioSink>
#include <QCoreApplication>
#include <QFile>
#include <QMediaDevices>
#include <cstdio>

namespace {

constexpr int kHeader = 44;
constexpr int kBufferMs = 200;

}  // namespace

int main(int argc, char** argv) {
  QCoreApplication application(argc, argv);
  QFile file(QString::fromLocal8Bit(argc == 2 ? argv[1] : ""));
  if (!file.open(QIODevice::ReadOnly) || !file.seek(kHeader)) {
    std::fputs("bench-player: FILE\n", stderr);
    return 1;
  }
  QAudioFormat format;
  format.setSampleFormat(QAudioFormat::Int16);
  format.setSampleRate(22050);
  format.setChannelCount(1);
  QAudioSink sink(QMediaDevices::defaultAudioOutput(), format);
  sink.setBufferSize(format.bytesForDuration(kBufferMs * 1000));
  QObject::connect(&sink, &QAudioSink::stateChanged, &file, [&](QAudio::State state) {
    if (state == QAudio::IdleState) file.seek(kHeader);
    if (state == QAudio::StoppedState) QCoreApplication::exit(1);
  });
  sink.start(&file);
  return QCoreApplication::exec();
}
