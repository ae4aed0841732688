#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>

#include "tools/screen/screenlayout.h"

namespace qv3 {

/// The picture of a virtual display, live: what the display draws is seen here at once, without
/// asking it.
class ScreenFile {
 public:
  /// Null, with a text, if `path` holds no such picture.
  static std::unique_ptr<ScreenFile> open(const std::string& path, std::string& error);

  ScreenFile(const ScreenFile&) = delete;
  ScreenFile& operator=(const ScreenFile&) = delete;
  ~ScreenFile();

  const ScreenLayout& layout() const { return m_layout; }

  /// `count` rows from `first` on, all within the picture.
  std::span<const std::uint8_t> rows(int first, int count) const;
  std::span<const std::uint8_t> picture() const { return rows(0, m_layout.height); }

 private:
  ScreenFile(std::span<const std::uint8_t> file, ScreenLayout layout)
      : m_file(file), m_layout(layout) {}

  std::span<const std::uint8_t> m_file;
  ScreenLayout m_layout;
};

}  // namespace qv3
