#pragma once

#include <functional>
#include <memory>
#include <string>

#include "app/options.h"
#include "app/program.h"
#include "platform/disk/diskfiles.h"
#include "platform/disk/nexttake.h"
#include "platform/disk/recoveryfolder.h"
#include "platform/paths.h"
#include "platform/pumpedwait.h"
#include "platform/qtserialport.h"
#include "platform/signals.h"
#include "platform/soundmachine.h"
#include "settings/disktextstore.h"

namespace qv3 {

/// What a test puts in place of the machine's own; what is empty stays.
struct Substitutes {
  const DiskSpace* disk = nullptr;  ///< tells the room on disks
  /// The port to the sound device, for the machine's own one.
  std::function<MediaPort&(MediaPort& own)> media;
};

/// The program on this machine: real port, disk, sound and clocks, and a `Program` that knows
/// nothing of them.
class Machine {
 public:
  /// Once an application exists.
  Machine(const Options& options, PortTable ports, const Substitutes& substitutes = {});
  Machine(const Machine&) = delete;
  Machine& operator=(const Machine&) = delete;

  Program& program() { return *m_program; }

  /// Ends the sound once the event loop is over. False if the sound server hangs: the program must
  /// then end without waiting for it.
  bool shutDown() { return m_sound.shutDown(); }

 private:
  Surroundings surroundings(const Options& options, PortTable ports,
                            const Substitutes& substitutes);
  LeftBehind leftBehind();

  ProgramFolders m_folders;
  QtSerialPort m_port;
  PumpedWait m_wait;
  DiskTextStore m_store;
  DiskFiles m_files;
  RecoveryFolder m_recovery;
  NextTake m_nextTake;
  std::string m_timingTrack;
  SoundMachine m_sound;
  std::unique_ptr<Program> m_program;
  std::unique_ptr<TerminationSignals> m_termination;
};

/// What holds for every window of the program, real or under test.
void prepareApplication();

/// To the terminal, before there is a window.
void say(const std::string& text);

}  // namespace qv3
