// Records without end, as fast as the disk takes it, until it is killed.
//
// journal_victim FOLDER COUNT: journals into FOLDER; before each record its number goes into the
// 8 bytes of the file COUNT, which is shared memory.

#include <fcntl.h>
#include <sys/mman.h>

#include <atomic>
#include <cstdio>
#include <fstream>
#include <thread>

#include "platform/disk/diskfiles.h"
#include "platform/disk/recoveryfolder.h"
#include "recording/journalsink.h"
#include "tests/platform/victimrecords.h"

namespace {

std::atomic<std::uint64_t>* shareCounter(const char* path) {
  const int file = open(path, O_RDWR | O_CLOEXEC);
  void* memory = mmap(nullptr, sizeof(std::uint64_t), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
  return memory == MAP_FAILED ? nullptr : static_cast<std::atomic<std::uint64_t>*>(memory);
}

void awaitWritten(const qv3::JournalWriter& writer, std::uint64_t bytes) {
  while (writer.written() < bytes) std::this_thread::yield();
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  std::atomic<std::uint64_t>* counter = shareCounter(argv[2]);
  qv3::DiskFiles files;
  qv3::RecoveryFolder folder(argv[1], files);
  const auto failed = [](const std::string& reason) { std::fputs(reason.c_str(), stderr); };
  const auto created = folder.create("victim", failed);
  if (counter == nullptr || !created.journal) return 1;
  std::ofstream(created.journal->spoolPath()) << "sound";

  const auto header = qv3::test::victimHeader(created.journal->spoolName());
  qv3::JournalFeed feed(*created.journal);
  feed.begin(header);
  qv3::RecordBuffer records;
  std::uint64_t bytes = qv3::encodeJournalHeader(header).size();
  while (true) {
    // As with a meter, the next sample comes when the last one has long been written.
    awaitWritten(*created.journal->writer(), bytes);
    records.append(qv3::test::victimRecord(records.count() + 1));
    counter->store(records.count());
    feed.update(records);
    bytes += qv3::kRecordSize;
  }
}
