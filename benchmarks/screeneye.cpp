#include "benchmarks/screeneye.h"

#include <algorithm>
#include <chrono>

namespace qv3 {
namespace {

constexpr int kRows = 8;
constexpr std::chrono::microseconds kLook{250};

/// A look may catch the display at its painting: so long after it what changes belongs to it.
constexpr double kPainting = 10;  // ms

}  // namespace

std::unique_ptr<ScreenEye> ScreenEye::open(const std::string& path, int firstRow,
                                           std::string& error) {
  auto screen = ScreenFile::open(path, error);
  if (!screen) return nullptr;
  return std::unique_ptr<ScreenEye>(new ScreenEye(std::move(screen), firstRow));
}

ScreenEye::ScreenEye(std::unique_ptr<ScreenFile> screen, int firstRow)
    : m_screen(std::move(screen)), m_rows(m_screen->rows(firstRow, kRows)) {
  m_thread = std::thread([this] { run(); });
}

ScreenEye::~ScreenEye() {
  m_ended = true;
  if (m_thread.joinable()) m_thread.join();
}

std::vector<test::Moment> ScreenEye::seen() {
  m_ended = true;
  if (m_thread.joinable()) m_thread.join();
  return m_seen;
}

/// The moment of a change is that of the last look that found its picture unfinished.
void ScreenEye::run() {
  std::vector<std::uint8_t> last(m_rows.begin(), m_rows.end());
  test::Moment began = 0;
  while (!m_ended) {
    std::this_thread::sleep_for(kLook);
    if (std::equal(m_rows.begin(), m_rows.end(), last.begin())) continue;
    const test::Moment now = test::momentNow();
    last.assign(m_rows.begin(), m_rows.end());
    if (!m_seen.empty() && now - began < kPainting) {
      m_seen.back() = now;
    } else {
      m_seen.push_back(now);
      began = now;
    }
  }
}

}  // namespace qv3
