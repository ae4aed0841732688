#include "instrument/session/takeloading.h"

#include <set>
#include <utility>

#include "measure/numbers.h"
#include "recording/foldernames.h"
#include "recording/naming.h"
#include "recording/sessionfile.h"

namespace qv3 {
namespace {

constexpr std::size_t kExtension = 4;
constexpr std::size_t kRecordsASlice = 40000;  // a millisecond at most
constexpr int kNumbers = 1000;

constexpr const char* kMissingAudio =
    "The audio file is missing. The .qvd and .wav (or .mp3) files must reside in the same folder.  "
    "Please check and try again or disable audio.";
constexpr const char* kIncompatible =
    "This file is corrupt or needs to be converted to version 2 format.";

}  // namespace

std::string folderOf(const std::string& path) {
  return path.substr(0, path.rfind('/') + 1);
}

std::string fileOf(const std::string& path) {
  return path.substr(path.rfind('/') + 1);
}

TakeLoading::TakeLoading(SessionState& state, std::function<void(const OpenedSound&)> loaded)
    : m_state(state), m_loaded(std::move(loaded)) {}

/// Nothing is discarded before a file is chosen.
void TakeLoading::cmdLoad() {
  if (!m_state.instrument().allowed(Command::Load)) return;
  m_state.confirmDiscard(Command::Load, [this] {
    const FileChoice choice{"dlgLoad", "Load File for Playback", "qvd file (*.qvd*)|*.qvd",
                            m_state.settings().LoadPath, ""};
    m_state.view().chooseLoadFile(choice, [this](const std::string& path) {
      if (!path.empty() && m_state.instrument().allowed(Command::Load)) discardAndLoad(path);
    });
  });
}

void TakeLoading::open(const std::string& path) {
  if (!m_state.instrument().allowed(Command::Load)) return;
  m_state.confirmDiscard(Command::Load, [this, path] { discardAndLoad(path); });
}

void TakeLoading::listNumbered() {
  if (!m_state.instrument().allowed(Command::Load)) return;
  const NumberedName name = splitNumberedName(fileOf(m_state.base));
  const std::string folder = m_state.settings().LoadPath;
  const FileNames names = m_state.world.files.files(folder);
  const std::set<std::string> files(names.begin(), names.end());
  std::vector<std::string> numbers;
  int current = -1;
  for (int number = 0; number < kNumbers; ++number) {
    const std::string digits = formatThreeDigits(number);
    if (files.count(name.prefix + digits + ".qvd") == 0) continue;
    if (number == name.number) current = static_cast<int>(numbers.size());
    numbers.push_back(digits);
  }
  if (numbers.empty()) return;
  m_state.confirmDiscard(Command::Load, [this, numbers, current, prefix = folder + name.prefix] {
    m_state.Flush_RecBuffer();
    m_numberedPrefix = prefix;
    m_state.view().showNumberedFiles(numbers, current);
  });
}

void TakeLoading::loadNumbered(const std::string& number) {
  if (!m_state.instrument().allowed(Command::Load)) return;
  const std::string base = m_numberedPrefix + number;
  m_state.confirmDiscard(Command::Load, [this, base] { discardAndLoad(base + ".qvd"); });
}

void TakeLoading::discardAndLoad(const std::string& path) {
  m_state.Flush_RecBuffer();
  const bool extension = path.size() > kExtension;
  Load_File(extension ? path.substr(0, path.size() - kExtension) : path, path);
}

void TakeLoading::Load_File(const std::string& base, const std::string& path) {
  m_state.world.media.send("close WavFile");
  Take take;
  take.withSound = m_state.settings().AudioEnable;
  take.folder = folderOf(base);
  take.name = fileOf(base);
  if (take.withSound ? !findSound(take) : !openTiming()) return;
  if (take.withSound) m_sound = openTakeSound(m_state, take);
  FileTasks& files = m_state.world.files;
  m_loader = std::make_unique<SessionLoader>(files.read(path), files.size(path).value_or(0));
  m_path = path;
  m_take = std::move(take);
  m_state.instrument().setOperation(Operation::Loading);
  m_state.view().showLoadedFile("Loading......", path);
  showProgress();
  m_state.view().refreshTransport();
}

/// The wav of the session or, without one or with an empty one, its mp3.
bool TakeLoading::findSound(Take& take) {
  const FileTasks& files = m_state.world.files;
  const FileNames names = files.files(take.folder);
  if (const auto wav = findCompanion(names, take.name, ".wav")) {
    take.sound = {TakeSound::Kind::Wav, take.folder + *wav, 0, 0};
    if (files.size(take.sound.path).value_or(0) > 0) return true;
  }
  const auto mp3 = findCompanion(names, take.name, ".mp3");
  if (!mp3) {
    m_state.tell("msgNoAudio", "File Not Found", kMissingAudio);
    return false;
  }
  take.sound = {TakeSound::Kind::Mp3, take.folder + *mp3, 0, 0};
  return true;
}

bool TakeLoading::openTiming() {
  const auto sound = openTimingTrack(m_state);
  if (sound) m_sound = *sound;
  return sound.has_value();
}

void TakeLoading::refuseFormat() {
  m_loader.reset();
  m_state.instrument().setOperation(Operation::None);
  m_state.tell("msgIncompatible", "Incompatible file format", kIncompatible);
  m_state.world.media.send("close WavFile");
  m_state.showNothingLoaded();
}

void TakeLoading::poll() {
  if (!m_loader) return;
  switch (m_loader->step(kRecordsASlice)) {
    case SessionLoader::State::Loading:
      showProgress();
      break;
    case SessionLoader::State::Incompatible:
      refuseFormat();
      break;
    case SessionLoader::State::Done:
      finish();
      break;
  }
}

void TakeLoading::showProgress() {
  m_state.view().showBar({BarFace::Work, {}, m_loader->progress() * BarGeometry::kWidth});
}

void TakeLoading::finish() {
  Take take = std::move(m_take);
  take.records = m_loader->takeRecords();
  m_loader.reset();
  m_state.base = take.folder + take.name;
  take.start = headerStart(take.records);
  take.loaded = true;
  take.unsaved = false;
  m_state.setTake(std::move(take));
  m_state.settings().LoadPath = m_state.take.folder;
  m_state.instrument().setOperation(Operation::None);
  m_state.view().showLoadedFile(fileOf(m_path), m_path);
  m_state.showTotalTime();
  m_loaded(m_sound);
  m_state.view().refreshTransport();
}

void TakeLoading::giveUp() {
  if (!m_loader) return;
  m_loader.reset();
  m_state.instrument().setOperation(Operation::None);
  m_state.Flush_RecBuffer();
}

}  // namespace qv3
