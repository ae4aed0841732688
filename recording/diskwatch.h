#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace qv3 {

/// Room on the disk that a folder lies on.
struct DiskRoom {
  std::uint64_t freeBytes = 0;  ///< as this user may write
  std::uint64_t disk = 0;       ///< the same number for folders on the same disk
};

class DiskSpace {
 public:
  virtual ~DiskSpace() = default;

  /// Nothing if that is no folder, or its disk does not tell.
  virtual std::optional<DiskRoom> room(const std::string& folder) const = 0;
};

/// Bytes that a second of recording takes.
std::uint64_t recordedBytesPerSecond(bool withSound);

/// Seconds of recording for which there is room, in the state folder, where it is kept as it comes,
/// and in the save folder, to which all of it is copied in the end: `taken` bytes of the present
/// recording are still to be copied. A folder that does not tell does not count; nothing if none
/// tells.
std::optional<std::int64_t> recordingSecondsLeft(const std::optional<DiskRoom>& state,
                                                 const std::optional<DiskRoom>& save,
                                                 std::uint64_t taken, bool withSound);

/// Decides what comes of the room that is left. One for each recording.
class DiskWatch {
 public:
  enum class Verdict {
    Enough,
    Tell,  ///< an hour or less is left; said once
    Full,  ///< less than two minutes: Record is refused, a running recording is stopped
  };

  Verdict look(const std::optional<std::int64_t>& secondsLeft);

 private:
  bool m_told = false;
};

/// What to tell the user of a verdict.
std::string diskMessage(DiskWatch::Verdict verdict, std::int64_t secondsLeft);

}  // namespace qv3
