#pragma once

#include <QProcess>
#include <QString>
#include <QStringList>
#include <cstdint>
#include <functional>
#include <optional>

#include "instrument/operation.h"
#include "tests/support/patience.h"

namespace qv3::test {

/// Looks every few milliseconds.
bool eventually(const std::function<bool()>& condition, int milliseconds = kPatienceMs);

/// What a user sees of the program.
struct Seen {
  bool done = false;  ///< what was told could be done
  Operation operation = Operation::None;
  int programState = 0;
  QString status;
  bool unsaved = false;
  int recorded = 0;  ///< samples so far
  QString dialog;    ///< name of what is open, empty if nothing is
  QString text;
  int paints = 0;        ///< how often the meter panel was painted
  int longestStill = 0;  ///< since the last look, in milliseconds
};

/// The driven program in a process of its own, with no more rights than any user has.
class DrivenProgram {
 public:
  DrivenProgram(const QStringList& arguments, const QProcessEnvironment& environment);
  ~DrivenProgram();
  DrivenProgram(const DrivenProgram&) = delete;
  DrivenProgram& operator=(const DrivenProgram&) = delete;

  Seen tell(const QString& command);
  Seen look() { return tell(QStringLiteral("look")); }
  bool sees(const std::function<bool(const Seen&)>& wanted, int milliseconds = kPatienceMs);
  bool reaches(Operation operation);
  bool opens(const char* dialog, int milliseconds = kPatienceMs);

  void signal(int number);
  /// No file can grow beyond this size, as on a disk that is full there.
  void limitFiles(std::optional<std::uint64_t> bytes);

  bool running();
  /// Whether it ends, by itself and without an error.
  bool endsWell(int milliseconds = kPatienceMs);

 private:
  QProcess m_process;
};

}  // namespace qv3::test
