#pragma once

#include <cstddef>
#include <deque>

#include "tools/metersim/core/nanos.h"

namespace qv3::metersim {

/// Remembers what was written lately, and so tells how much of what still waits is too old to be
/// delivered: a line that nobody reads would otherwise hand out a burst of the past later.
class Backlog {
 public:
  explicit Backlog(Nanos oldest) : m_oldest(oldest) {}

  void wrote(std::size_t characters, Nanos now);

  /// How many of the `waiting` characters, oldest first, were written longer ago than allowed.
  std::size_t stale(std::size_t waiting, Nanos now);

  void clear();

 private:
  struct Written {
    Nanos at;
    std::size_t characters;
  };

  Nanos m_oldest;
  std::deque<Written> m_written;  ///< not older than allowed
  std::size_t m_fresh = 0;        ///< their sum
};

}  // namespace qv3::metersim
