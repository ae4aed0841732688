#pragma once

#include <memory>
#include <string>
#include <vector>

#include "recording/sound/bytefile.h"
#include "recording/sounddevice.h"

namespace qv3 {

/// What a save writes: a header, then bytes of a file; those that are missing there are silence.
struct SaveSource {
  std::vector<std::uint8_t> header;
  std::shared_ptr<ByteFile> file;
  std::uint64_t offset = 0;
  std::uint64_t length = 0;
  std::uint8_t silence = 0;
};

class SaveJob final : public SoundSave {
 public:
  /// `target` is the new, empty file `temporary`.
  SaveJob(SoundFiles& files, SaveSource source, std::unique_ptr<ByteFile> target,
          std::string temporary, std::string path);
  SaveJob(const SaveJob&) = delete;
  SaveJob& operator=(const SaveJob&) = delete;
  ~SaveJob() override;

  State step() override;
  State state() const override { return m_state; }
  double progress() const override;
  const std::string& error() const override { return m_error; }

 private:
  bool put(std::uint64_t offset, std::span<const std::uint8_t> bytes);
  bool copyPiece();
  void finish();
  void fail(std::string error);

  SoundFiles& m_files;
  SaveSource m_source;
  std::unique_ptr<ByteFile> m_target;
  std::string m_temporary;
  std::string m_path;
  State m_state = State::Saving;
  std::uint64_t m_copied = 0;
  std::string m_error;
};

}  // namespace qv3
