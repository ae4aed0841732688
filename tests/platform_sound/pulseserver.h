#pragma once

#include <QProcess>
#include <QString>
#include <QTemporaryDir>
#include <memory>

namespace qv3::test {

/// A PulseAudio server of the test's own: a null sink "room", which is the loudspeaker, and a
/// source "microphone". This process and those it starts use it from then on.
class PulseServer {
 public:
  enum class Microphone {
    Room,  ///< hears the loudspeaker
    Pipe,  ///< "microphone" in the folder, 44100 Hz, 16 bit, one channel
  };

  explicit PulseServer(Microphone microphone = Microphone::Room);
  ~PulseServer();
  PulseServer(const PulseServer&) = delete;
  PulseServer& operator=(const PulseServer&) = delete;

  /// Before the start: a library that comes before all others in the server.
  void preload(const QString& library) { m_preloaded = library; }

  /// Returns once the room makes sound: a fresh null sink stands still for two seconds.
  [[nodiscard]] bool start();
  void kill();

  /// Plays 16-bit mono at 44100 Hz from a file into the room, without an end for "/dev/zero".
  std::unique_ptr<QProcess> play(const QString& file);
  /// What is heard in the room from now on, in the same format, on its standard output.
  std::unique_ptr<QProcess> listen();

  QString folder() const { return m_folder.path(); }

 private:
  QString microphoneModule() const;
  bool answers();

  const Microphone m_microphone;
  QString m_preloaded;
  QTemporaryDir m_folder;
  std::unique_ptr<QProcess> m_server;
  std::unique_ptr<QProcess> m_quiet;  ///< keeps the room awake
};

/// Ends a program that runs without an end.
void end(QProcess& process);

}  // namespace qv3::test
