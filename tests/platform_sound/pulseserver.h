#pragma once

#include <QProcess>
#include <QString>
#include <QTemporaryDir>
#include <memory>

namespace qv3::test {

/// A PulseAudio server of the test's own: a null sink "room", which is the loudspeaker, and a
/// source "microphone", which hears it. This process and those it starts use it from then on.
class PulseServer {
 public:
  PulseServer();
  ~PulseServer();
  PulseServer(const PulseServer&) = delete;
  PulseServer& operator=(const PulseServer&) = delete;

  /// Returns once the room makes sound: a fresh null sink stands still for two seconds.
  [[nodiscard]] bool start();
  void kill();

  /// Plays 16-bit mono at 44100 Hz from a file into the room, without an end for "/dev/zero".
  std::unique_ptr<QProcess> play(const QString& file);
  /// What is heard in the room from now on, in the same format, on its standard output.
  std::unique_ptr<QProcess> listen();

  QString folder() const { return m_folder.path(); }

 private:
  bool answers();

  QTemporaryDir m_folder;
  std::unique_ptr<QProcess> m_server;
  std::unique_ptr<QProcess> m_quiet;  ///< keeps the room awake
};

/// Ends a program that runs without an end.
void end(QProcess& process);

}  // namespace qv3::test
