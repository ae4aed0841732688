#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "link/byteport.h"

namespace qv3 {

/// Which node each port number stands for, and which of them could be opened at the last scan.
/// Ports are numbered 1 to 16; every other number has an empty path and does not exist.
class PortTable {
 public:
  static constexpr int kLast = 16;

  /// 1 to 8 are /dev/ttyUSB0 to 7, 9 to 12 /dev/ttyACM0 to 3, 13 to 16 /dev/ttyS0 to 3.
  PortTable();

  /// Replaces a port's node as "N=PATH" says, unless an earlier entry named that port. A relative
  /// path counts from the folder that is current now. Returns what is wrong with the entry, empty
  /// if nothing is.
  [[nodiscard]] std::string name(std::string_view entry);

  /// The same for a text of entries; blank ones are skipped. Returns a text for each bad entry; the
  /// others count all the same.
  [[nodiscard]] std::vector<std::string> nameAll(std::string_view entries, char separator);

  const std::string& path(int port) const;

  /// The last scan could open it.
  bool exists(int port) const { return slot(port).exists; }

  void scanned(int port, const PortResult& result);

  /// The port where a meter is expected: that its device is missing is worth a word. So it is of
  /// ports that were named.
  void expect(int port) { m_expected = port; }

  /// Keeps why a port could not be opened outside a scan; what exists stays as the scan left it.
  void opened(int port, const PortResult& result);

  /// A line for each node that could not be opened, in the order of the ports. Ports that the
  /// machine just does not have are left out.
  std::vector<std::string> reasons() const;

  /// What helps against these reasons, each once.
  std::vector<std::string> helps() const;

 private:
  struct Slot {
    std::string path;
    bool named = false;
    bool exists = false;
    PortResult result;  ///< of the last attempt to open it
  };

  const Slot& slot(int port) const;
  bool failed(int port) const;

  std::array<Slot, kLast + 1> m_slots;  ///< the first stands for every number that is no port
  int m_expected = 0;
};

}  // namespace qv3
