#pragma once

#include <QProcessEnvironment>
#include <QTemporaryDir>
#include <memory>
#include <string>

#include "tests/faults/drivenprogram.h"
#include "tests/faults/savedpair.h"
#include "tests/platform_sound/pulseserver.h"
#include "tests/support/simulatedmeter.h"

namespace qv3::test {

/// Whether sessions are recorded with sound, and from which server.
enum class Sound { Off, NoServer, Shared, Own };

/// A place to break things in: a meter, a sound server perhaps, folders, and the program at work
/// with them.
class Bench {
 public:
  /// `recording` are lines for that section of the settings file.
  Bench(const std::string& recording, Sound sound, PulseServer* room);

  /// A program with the meter, live, or one without any.
  void startLive();
  void startWithoutMeter();
  /// The same on another meter, in the same or another settings folder.
  std::unique_ptr<DrivenProgram> another(const QString& home, const QString& meter);

  DrivenProgram& program() { return *m_program; }
  SimulatedMeter& meter() { return m_meter; }
  PulseServer& room() { return *m_room; }

  void record();
  /// So many samples more.
  void recordMore(int samples);
  /// Ends it; it is in hand then, unsaved.
  void stop();
  void play();

  /// Answers whatever is open as one who does not care.
  void clearBoxes();
  /// Saves what is in hand into the second folder.
  void saveElsewhere();
  /// Ends the program if it still runs, starts one without a meter and recovers what it offers.
  void recover();
  /// One session is saved, with at least so many samples, and nothing else is left of it.
  void expectSaved(int samples);
  /// And its sound lacks at most 100 ms at the end.
  void expectHeardToTheEnd();
  /// A next start has nothing to offer.
  void expectNothingLeft();

  QString home() const { return m_folder.filePath("home"); }
  QString recovery() const { return m_folder.filePath("home/recovery"); }
  QString saves() const { return m_folder.filePath("saves"); }
  QString elsewhere() const { return m_folder.filePath("elsewhere"); }
  QString path(const QString& name) const { return m_folder.filePath(name); }
  /// A new folder.
  QString folderFor(const QString& name) const;

  /// Every ".qvd" in the folders, and in the trash.
  QStringList saved() const;
  /// Names in a folder.
  static QStringList names(const QString& folder);
  /// Bytes of the journal of the running recording, or of its sound.
  std::uint64_t sizeIn(const QString& folder, const QString& pattern) const;

 private:
  void configure(const QString& home, int port) const;

  QTemporaryDir m_folder;
  std::string m_recording;
  Sound m_sound;
  PulseServer* m_room;
  QProcessEnvironment m_environment;
  SimulatedMeter m_meter;
  std::unique_ptr<DrivenProgram> m_program;
};

}  // namespace qv3::test
