#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "recording/sound/soundbackend.h"

namespace qv3 {

/// Makes the real thing when it is first needed, so that a program that makes no sound loads no
/// sound library. Where none can be made there is no sound.
class LazyBackend final : public SoundBackend {
 public:
  using Factory = std::function<std::unique_ptr<SoundBackend>()>;

  explicit LazyBackend(Factory factory) : m_factory(std::move(factory)) {}

  void play(std::shared_ptr<PlaybackFeed> feed) override {
    if (SoundBackend* backend = made()) backend->play(std::move(feed));
  }
  void capture(std::shared_ptr<CaptureFeed> feed) override {
    if (SoundBackend* backend = made()) backend->capture(std::move(feed));
  }
  void wake() override {
    if (m_backend) m_backend->wake();
  }
  std::unique_ptr<SoundReader> openDecoder(const std::string& path) override {
    SoundBackend* backend = made();
    return backend ? backend->openDecoder(path) : nullptr;
  }
  bool shutDown() override {
    m_factory = nullptr;
    return !m_backend || m_backend->shutDown();
  }

 private:
  SoundBackend* made() {
    if (m_factory) m_backend = std::exchange(m_factory, nullptr)();
    return m_backend.get();
  }

  Factory m_factory;
  std::unique_ptr<SoundBackend> m_backend;
};

}  // namespace qv3
