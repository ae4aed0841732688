#pragma once

#include <atomic>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "tests/step/claps.h"
#include "tools/screen/screenfile.h"

namespace qv3 {

/// Sees the needle move on a virtual display: when rows of its picture that show nothing else
/// changed, looking four times a millisecond.
class ScreenEye {
 public:
  /// Null, with a text, if `path` is no such picture.
  static std::unique_ptr<ScreenEye> open(const std::string& path, int firstRow, std::string& error);

  ~ScreenEye();
  ScreenEye(const ScreenEye&) = delete;
  ScreenEye& operator=(const ScreenEye&) = delete;

  /// Ends the looking.
  std::vector<test::Moment> seen();

 private:
  ScreenEye(std::unique_ptr<ScreenFile> screen, int firstRow);
  void run();

  const std::unique_ptr<ScreenFile> m_screen;
  const std::span<const std::uint8_t> m_rows;
  std::atomic<bool> m_ended = false;
  std::vector<test::Moment> m_seen;  ///< of the thread until it has ended
  std::thread m_thread;
};

}  // namespace qv3
