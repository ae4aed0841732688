#include "platform/disk/takejournal.h"

#include <string_view>
#include <utility>

#include "recording/setaside.h"

namespace qv3 {
namespace {

std::string folderOf(const std::string& path) {
  return path.substr(0, path.rfind('/') + 1);
}

}  // namespace

TakeJournal::TakeJournal(FileTasks& files, std::string path, std::shared_ptr<FileDescriptor> file,
                         JournalWriter::Failed failed)
    : TakeJournal(files, std::move(path), std::move(file)) {
  auto target = std::make_shared<PosixAppendFile>(m_file, folderOf(m_path));
  m_writer = std::make_unique<JournalWriter>(std::move(target), std::move(failed));
}

TakeJournal::TakeJournal(FileTasks& files, std::string path, std::shared_ptr<FileDescriptor> file)
    : m_files(files), m_path(std::move(path)), m_file(std::move(file)) {}

void TakeJournal::append(std::vector<std::uint8_t> bytes) {
  if (m_writer) m_writer->append(std::move(bytes));
}

void TakeJournal::finish() {
  if (m_writer) m_writer->finish();
}

void TakeJournal::remove() {
  if (m_writer) m_writer->abandon();
  m_writer.reset();
  // The journal goes last: as long as it is there somebody cleans up after it. A file that is not
  // there is as good as removed.
  for (const std::string& path : {spoolPath(), m_path}) {
    static_cast<void>(m_files.remove(path).ok());
  }
  m_file.reset();
}

void TakeJournal::moveToTrash() {
  m_writer.reset();
  SetAside aside(m_files);
  for (const std::string& path : {spoolPath(), m_path}) {
    if (m_files.exists(path)) static_cast<void>(aside.add(path).ok());
  }
  m_file.reset();
}

std::string TakeJournal::spoolPath() const {
  return folderOf(m_path) + spoolName();
}

std::string TakeJournal::spoolName() const {
  const std::string name = m_path.substr(m_path.rfind('/') + 1);
  return name.substr(0, name.size() - std::string_view(kJournalExtension).size()) + ".wav";
}

}  // namespace qv3
