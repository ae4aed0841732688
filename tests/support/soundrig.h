#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "recording/sound/wavfile.h"
#include "recording/sound/wavlayout.h"
#include "recording/soundcommands.h"

namespace qv3::test {

using Bytes = std::vector<std::uint8_t>;

/// SoundFiles in memory. The disk holds `room` bytes more. A write that does not fit is not done.
class MemorySoundFiles : public SoundFiles {
 public:
  PathKind kind(const std::string& path) override {
    if (contents.count(path) > 0) return PathKind::File;
    return folders.count(path) > 0 ? PathKind::Folder : PathKind::Missing;
  }
  bool same(const std::string& one, const std::string& other) override { return one == other; }
  std::unique_ptr<ByteFile> open(const std::string& path) override {
    return std::make_unique<File>(contents.at(path), *this);
  }
  std::unique_ptr<ByteFile> create(const std::string& path) override {
    if (path.empty() || contents.count(path) > 0) return nullptr;
    contents[path] = std::make_shared<Bytes>();
    return open(path);
  }
  std::string nameBeside(const std::string& path) override { return path + ".tmp"; }
  bool rename(const std::string& from, const std::string& to) override {
    if (kind(to) == PathKind::Folder) return false;
    contents[to] = contents.at(from);
    contents.erase(from);
    return true;
  }
  void remove(const std::string& path) override { contents.erase(path); }

  void add(const std::string& path, Bytes bytes) {
    contents[path] = std::make_shared<Bytes>(std::move(bytes));
  }

  std::map<std::string, std::shared_ptr<Bytes>> contents;
  std::map<std::string, bool> folders = {{"/s/", true}};
  std::uint64_t room = std::numeric_limits<std::uint64_t>::max();

 private:
  class File : public ByteFile {
   public:
    File(std::shared_ptr<Bytes> bytes, MemorySoundFiles& disk)
        : m_bytes(std::move(bytes)), m_disk(disk) {}

    std::uint64_t size() override { return m_bytes->size(); }
    std::size_t readAt(std::uint64_t offset, std::span<std::uint8_t> to) override {
      if (offset >= m_bytes->size()) return 0;
      const std::size_t count = std::min<std::uint64_t>(to.size(), m_bytes->size() - offset);
      std::copy_n(m_bytes->begin() + static_cast<std::ptrdiff_t>(offset), count, to.begin());
      return count;
    }
    bool writeAt(std::uint64_t offset, std::span<const std::uint8_t> bytes) override {
      const std::uint64_t end = offset + bytes.size();
      const std::uint64_t more = end > m_bytes->size() ? end - m_bytes->size() : 0;
      if (more > m_disk.room) return false;
      m_disk.room -= more;
      m_bytes->resize(m_bytes->size() + more);
      std::copy(bytes.begin(), bytes.end(), m_bytes->begin() + static_cast<std::ptrdiff_t>(offset));
      return true;
    }
    bool truncate(std::uint64_t size) override {
      m_bytes->resize(size);
      return true;
    }
    std::string error() override { return "the disk is full"; }

   private:
    std::shared_ptr<Bytes> m_bytes;
    MemorySoundFiles& m_disk;
  };
};

/// Keeps what it is given; the test is the sound thread. Any path that ends in ".decode" can be
/// decoded to a second of silence.
class FakeBackend : public SoundBackend {
 public:
  class Decoder : public SoundReader {
   public:
    std::uint32_t framesPerSecond() const override { return 8000; }
    std::uint32_t channels() const override { return 1; }
    std::int64_t frames() const override { return 8000; }
    void read(std::int64_t, std::span<std::int16_t> to) override {
      std::fill(to.begin(), to.end(), std::int16_t{0});
    }
  };

  void play(std::shared_ptr<PlaybackFeed> feed) override { playback = std::move(feed); }
  void capture(std::shared_ptr<CaptureFeed> feed) override { microphone = std::move(feed); }
  void wake() override {}
  std::unique_ptr<SoundReader> openDecoder(const std::string& path) override {
    if (!path.ends_with(".decode")) return nullptr;
    return std::make_unique<Decoder>();
  }
  bool shutDown() override { return true; }

  std::shared_ptr<PlaybackFeed> playback;
  std::shared_ptr<CaptureFeed> microphone;
};

/// The sound device and its command strings over a fake clock, a disk in memory and no sound.
/// "/s/tone5.wav" is 5 s at 22050 Hz, 16 bit, mono; "/s/st2.wav" 2 s at 44100 Hz, 16 bit, stereo;
/// "/s/dummy.mp3" is the timing track, of 3 s.
class SoundRig {
 public:
  SoundRig() {
    static const Bytes kTone = wav(22050, 1, 5);
    static const Bytes kStereo = wav(44100, 2, 2);
    files.add("/s/tone5.wav", kTone);
    files.add("/s/st2.wav", kStereo);
    files.add("/s/dummy.mp3", timingTrack(125));
    files.add("/s/empty.wav", {});
  }

  static Bytes wav(std::uint32_t rate, std::uint32_t channels, std::uint32_t seconds) {
    const WaveFormat format{rate, channels, 16, rate * channels * 2, channels * 2};
    const std::uint32_t size = format.bytesPerSecond * seconds;
    Bytes bytes = pcmHeader(format, size);
    for (std::uint32_t index = 0; index < size; ++index) {
      bytes.push_back(static_cast<std::uint8_t>(index * 7));
    }
    return bytes;
  }

  /// Silent frames of 24 ms: MPEG-1 layer III, 48 kHz, mono, 32 kbit/s.
  static Bytes timingTrack(int frames) {
    Bytes bytes;
    for (int count = 0; count < frames; ++count) {
      const std::size_t begin = bytes.size();
      bytes.resize(begin + 96);
      const Bytes header = {0xFF, 0xFB, 0x14, 0xC4};
      std::copy(header.begin(), header.end(), bytes.begin() + static_cast<std::ptrdiff_t>(begin));
    }
    return bytes;
  }

  /// Answers "code reply", without the blank where there is no reply.
  std::string send(std::string_view command) {
    const MediaReply reply = commands.send(command);
    return std::to_string(reply.code) + (reply.text.empty() ? "" : " " + reply.text);
  }

  void pass(std::int64_t milliseconds) { now += std::chrono::milliseconds(milliseconds); }

  /// Records with the long `set` and stops after so long.
  void startRecording() {
    send("open new type waveaudio alias WavFile");
    send(kSet);
    send("record WavFile");
  }

  /// The microphone hears `sample` for so long, punctually, in fragments of 20 ms.
  void hear(std::int16_t sample, std::int64_t milliseconds) {
    for (std::int64_t heard = 0; heard < milliseconds; heard += 20) {
      pass(20);
      deliver(sample, 20);
    }
  }
  void deliver(std::int16_t sample, std::int64_t milliseconds) {
    const std::vector<std::int16_t> frames(static_cast<std::size_t>(milliseconds * 22050 / 1000),
                                           sample);
    if (!backend.microphone) return;
    if (!backend.microphone->wanted(now)) return backend.microphone.reset();
    backend.microphone->captured(now, frames);
  }

  static constexpr std::string_view kSet =
      "set WavFile bitspersample 16 channels 1 alignment 2 samplespersec 22050 bytespersec 44100 "
      "time format bytes format tag pcm wait";

  MemorySoundFiles files;
  FakeBackend backend;
  SoundTime now{5'000'000};
  int spools = 0;
  bool spoolPossible = true;
  WavFile device{
      {backend, files, [this] { return now; },
       [this] { return spoolPossible ? "/s/spool" + std::to_string(++spools) : std::string(); },
       "/s/dummy.mp3"}};
  SoundCommands commands{device};
};

}  // namespace qv3::test
