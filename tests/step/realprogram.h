#pragma once

#include <QAbstractButton>
#include <QString>
#include <QTimer>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "app/machine.h"
#include "tests/step/claps.h"

namespace qv3::test {

/// Runs the event loop as the program's own does, until something holds. Throws `otherwise` if it
/// does not for so long.
void runUntil(const std::function<bool()>& holds, std::chrono::milliseconds longest,
              const char* otherwise);

/// Passes everything on and writes down where the sound was when.
class PositionLog final : public MediaPort {
 public:
  explicit PositionLog(MediaPort& media) : m_media(media) {}

  MediaReply send(std::string_view command) override;
  std::string errorText(int code) override { return m_media.errorText(code); }

  /// When the clock of the session, in bytes of sound, came to `milliseconds`; nothing if it never
  /// did.
  std::optional<Moment> reached(double milliseconds) const;

 private:
  struct Position {
    Moment at = 0;
    double milliseconds = 0;
  };

  MediaPort& m_media;
  std::vector<Position> m_positions;
};

/// The program with this machine's port, disk and sound, joined as `main` does it, in a folder of
/// its own, where its recordings go too ("Prefix_001"). What it does not do is thrown.
class RealProgram {
 public:
  /// `meter`: the device of its meter; empty: it has none.
  RealProgram(const QString& folder, const std::string& meter);

  void start();
  /// Loads the session "001" of the folder.
  void load();
  /// Presses a button of the recording panel.
  void press(const char* name);
  /// Runs until nothing is under way.
  void finish(std::chrono::milliseconds longest);

  std::string file(const char* name) const { return m_folder + name; }
  MainWindow& window() { return program().window(); }
  const PositionLog& positions() const { return *m_positions; }

 private:
  Program& program() { return m_machine.program(); }
  bool idle() { return program().instrument().operation() == Operation::None; }
  Substitutes substitutes();

  const std::string m_folder;  ///< ends in '/'
  const bool m_withMeter;
  std::optional<PositionLog> m_positions;
  Machine m_machine;
};

}  // namespace qv3::test
