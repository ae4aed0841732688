#include "platform/soundmachine.h"

#include <QCoreApplication>
#include <QLibrary>
#include <QStringList>
#include <utility>

#include "platform/sound/steadynow.h"

namespace qv3 {
namespace {

std::unique_ptr<SoundBackend> loadBackend() {
  const QString here = QCoreApplication::applicationDirPath();
  for (const QString& folder : {here, here + QStringLiteral("/../" QV3_MODULE_DIR)}) {
    QLibrary module(folder + QStringLiteral("/qv3-sound"));
    using Maker = SoundBackend* (*)();
    const auto make = reinterpret_cast<Maker>(module.resolve("qv3MakeSoundBackend"));
    if (make != nullptr) return std::unique_ptr<SoundBackend>(make());
  }
  return nullptr;
}

}  // namespace

SoundMachine::SoundMachine(std::string timingTrack, std::function<std::string()> nextSpool)
    : m_backend(loadBackend),
      m_device({m_backend, m_files, steadyNow, std::move(nextSpool), std::move(timingTrack)}),
      m_commands(m_device) {}

SoundMachine::~SoundMachine() = default;

std::optional<TakeSound> SoundMachine::recorded() const {
  const auto spool = m_device.spool();
  if (!spool) return std::nullopt;
  return TakeSound{TakeSound::Kind::Spool, spool->path, spool->offset, spool->length};
}

bool SoundMachine::shutDown() {
  m_device.close();
  return m_backend.shutDown();
}

}  // namespace qv3
