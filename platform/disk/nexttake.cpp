#include "platform/disk/nexttake.h"

#include <utility>

namespace qv3 {
namespace {

class NoJournal final : public JournalSink {
 public:
  void append(std::vector<std::uint8_t>) override {}
  void finish() override {}
  void remove() override {}
  void moveToTrash() override {}
};

}  // namespace

NextTake::NextTake(RecoveryFolder& folder, std::function<std::string()> stamp,
                   JournalWriter::Failed failed)
    : m_folder(folder), m_stamp(std::move(stamp)), m_failed(std::move(failed)) {}

NextTake::~NextTake() {
  drop();
}

std::string NextTake::nextSpool() {
  drop();
  m_prepared = m_folder.create(m_stamp(), m_failed).journal;
  return m_prepared ? m_prepared->spoolPath() : std::string();
}

std::unique_ptr<JournalSink> NextTake::newJournal() {
  if (m_prepared) return std::move(m_prepared);
  RecoveryFolder::Created created = m_folder.create(m_stamp(), m_failed);
  if (created.journal) return std::move(created.journal);
  m_failed(created.error);
  return std::make_unique<NoJournal>();
}

void NextTake::drop() {
  if (m_prepared) m_prepared->remove();
  m_prepared.reset();
}

}  // namespace qv3
