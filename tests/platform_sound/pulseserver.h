#pragma once

#include <QProcess>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <memory>

namespace qv3::test {

/// A PulseAudio server of the test's own: a null sink "room", which is the loudspeaker, and a
/// source "microphone".
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
  /// What a program needs to find it; without a display or a desktop's own folders.
  QProcessEnvironment environment() const;
  /// This process, and those it starts, use it from now on.
  void useHere() const;

  /// Returns once the room makes sound: a fresh null sink stands still for two seconds.
  [[nodiscard]] bool start();
  void kill();
  void signal(int number) const;

  /// Has `pactl` do something; false if it cannot.
  bool control(const QStringList& command) const;

  /// Plays 16-bit mono at 44100 Hz from a file into the room, without an end for "/dev/zero".
  std::unique_ptr<QProcess> play(const QString& file);
  /// What is heard in the room from now on, in the same format, on its standard output.
  std::unique_ptr<QProcess> listen();

  QString folder() const { return m_folder.path(); }

 private:
  QString microphoneModule() const;
  std::unique_ptr<QProcess> run(const QString& program, const QStringList& arguments,
                                const QString& preloaded = {}) const;

  const Microphone m_microphone;
  QString m_preloaded;
  QTemporaryDir m_folder;
  std::unique_ptr<QProcess> m_server;
  std::unique_ptr<QProcess> m_quiet;  ///< keeps the room awake
};

/// Ends a program that runs without an end.
void end(QProcess& process);

}  // namespace qv3::test
