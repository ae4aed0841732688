#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "recording/filetasks.h"

namespace qv3::test {

/// Hands bytes over in pieces that end in the midst of a record; after each piece, and where
/// `arrived` says so, the disk brings nothing at first.
class MemoryReadAhead : public ReadAhead {
 public:
  explicit MemoryReadAhead(std::string contents, std::size_t piece = kPiece,
                           const std::uint64_t& arrived = kAll)
      : m_contents(std::move(contents)), m_piece(piece), m_arrived(arrived) {}

  static constexpr std::size_t kPiece = 50'003;

  std::vector<std::uint8_t> take() override {
    m_waits = !m_waits;
    if (m_waits) return {};
    const std::size_t end = std::min<std::uint64_t>({m_contents.size(), m_arrived, m_at + m_piece});
    const std::string piece = m_contents.substr(m_at, end - m_at);
    m_at = end;
    return {piece.begin(), piece.end()};
  }
  bool atEnd() const override { return m_at == m_contents.size(); }

 private:
  static constexpr std::uint64_t kAll = std::numeric_limits<std::uint64_t>::max();

  std::string m_contents;
  std::size_t m_piece;
  const std::uint64_t& m_arrived;
  std::size_t m_at = 0;
  bool m_waits = true;
};

/// A file system in memory that can be told to fail: at its Nth changing call, or when so many
/// bytes have been written. New files are done at once, except that after each write they are busy
/// for a while.
class MemoryFiles : public FileTasks {
 public:
  std::map<std::string, std::string> contents;  ///< by full path
  std::set<std::string> folders;
  std::map<std::string, std::string> trash;
  std::vector<std::string> renamed;  ///< the new names, in order
  bool hasTrash = true;
  std::uint64_t room = std::numeric_limits<std::uint64_t>::max();  ///< bytes until the disk is full
  std::uint64_t arrived = std::numeric_limits<std::uint64_t>::max();  ///< of what is read
  int failingCall = -1;
  int calls = 0;
  int syncs = 0;

  bool isFolder(const std::string& path) const override {
    return folders.count(path.ends_with('/') ? path.substr(0, path.size() - 1) : path) > 0;
  }

  bool exists(const std::string& path) const override {
    return contents.count(path) > 0 || isFolder(path);
  }

  std::vector<std::string> files(const std::string& folder) const override {
    std::vector<std::string> names;
    for (const auto& [path, bytes] : contents) {
      if (path.starts_with(folder) && path.find('/', folder.size()) == std::string::npos)
        names.push_back(path.substr(folder.size()));
    }
    return names;
  }

  std::optional<std::uint64_t> size(const std::string& path) const override {
    const auto file = contents.find(path);
    if (file == contents.end()) return std::nullopt;
    return file->second.size();
  }

  FileResult makeFolder(const std::string& path) override {
    if (isFolder(path)) return {};
    if (fails()) return {"no folder today"};
    folders.insert(path.substr(0, path.size() - 1));
    return {};
  }

  std::unique_ptr<NewFile> createTemporary(const std::string& folder) override;
  std::unique_ptr<ReadAhead> read(const std::string& path) override {
    return std::make_unique<MemoryReadAhead>(contents.count(path) > 0 ? contents.at(path) : "",
                                             MemoryReadAhead::kPiece, arrived);
  }

  FileResult rename(const std::string& from, const std::string& to) override {
    if (fails() || contents.count(from) == 0) return {"no renaming today"};
    if (exists(to)) return {"the name is in use"};
    contents[to] = contents.extract(from).mapped();
    renamed.push_back(to);
    return {};
  }

  FileResult remove(const std::string& path) override {
    if (contents.erase(path) == 0) return {"no such file"};
    return {};
  }

  Moved moveToTrash(const std::string& path) override {
    if (!hasTrash || fails() || contents.count(path) == 0) return {"", "no trash"};
    trash[path] = contents.extract(path).mapped();
    return {"trash:" + path, ""};
  }

  FileResult takeFromTrash(const std::string& place, const std::string& path) override {
    contents[path] = trash.extract(place.substr(6)).mapped();
    return {};
  }

  std::unique_ptr<FileWork> syncFolder(const std::string&) override {
    struct Synced : FileWork {
      State state() const override { return State::Finished; }
      std::string error() const override { return {}; }
    };
    ++syncs;
    return std::make_unique<Synced>();
  }

  bool fails() { return calls++ == failingCall; }
};

class MemoryNewFile : public NewFile {
 public:
  MemoryNewFile(MemoryFiles& files, std::string path)
      : m_files(files), m_path(std::move(path)), m_failed(m_files.fails()) {
    if (!m_failed) m_files.contents[m_path];
  }
  ~MemoryNewFile() override { m_files.contents.erase(m_path); }
  MemoryNewFile(const MemoryNewFile&) = delete;
  MemoryNewFile& operator=(const MemoryNewFile&) = delete;

  State state() const override {
    if (m_failed) return State::Failed;
    if (m_busy > 0) {
      --m_busy;
      return State::Busy;
    }
    return m_finished ? State::Finished : State::Ready;
  }
  std::string error() const override { return "No space left on device"; }

  void write(std::vector<std::uint8_t> bytes) override {
    const std::size_t fitting = std::min<std::uint64_t>(bytes.size(), m_files.room);
    m_failed = m_failed || fitting < bytes.size();
    m_files.room -= fitting;
    m_written += fitting;
    m_busy = 3;
    if (!m_failed)
      m_files.contents[m_path].append(bytes.begin(),
                                      bytes.begin() + static_cast<std::ptrdiff_t>(fitting));
  }

  void copyFrom(const std::string& path, std::uint64_t offset, std::uint64_t length) override {
    if (length == 0) return;
    const std::string part = m_files.contents.at(path).substr(offset, length);
    m_failed = m_failed || part.size() < length;
    write({part.begin(), part.end()});
  }

  void writeZeros(std::uint64_t count) override { write(std::vector<std::uint8_t>(count)); }
  void finish() override { m_finished = true; }
  std::uint64_t written() const override { return m_written; }
  FileResult moveTo(const std::string& path) override { return m_files.rename(m_path, path); }

 private:
  MemoryFiles& m_files;
  std::string m_path;
  bool m_failed;
  bool m_finished = false;
  mutable int m_busy = 0;
  std::uint64_t m_written = 0;
};

inline std::unique_ptr<NewFile> MemoryFiles::createTemporary(const std::string& folder) {
  return std::make_unique<MemoryNewFile>(*this, folder + "new" + std::to_string(calls));
}

}  // namespace qv3::test
