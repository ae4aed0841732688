#include "recording/recorder.h"

#include <algorithm>

namespace qv3 {
namespace {

constexpr std::int32_t kSamplePeriod = 20;      // ms
constexpr std::int32_t kSamplesPerSecond = 50;  // nominal
constexpr std::int32_t kCorrection = 10;        // ms, where the second before had not 50 samples

}  // namespace

void Recorder::start(bool withSound) {
  m_records.clear();
  m_start.reset();
  m_phase = Phase::LeadIn;
  m_withSound = withSound;
  m_tagPending = false;
  m_lastTime = 0;
  m_previousSecondCount = 0;
  forgetSoundPosition();
}

void Recorder::startData(const SessionStart& start) {
  m_start = start;
  m_phase = Phase::Data;
  m_elapsedSeconds = 0;
}

void Recorder::append(const Sample& sample) {
  SampleRecord record;
  record.Needle = static_cast<std::int16_t>(static_cast<std::uint16_t>(sample.reading));
  record.NeedleShown = static_cast<std::int16_t>(static_cast<std::uint16_t>(sample.needleShown));
  record.BdTenths = sample.bdTenths;
  record.BasePosition = sample.basePosition;
  record.KnobPosition = sample.knobPosition;
  record.Flags = sample.flags;
  record.PacketType = sample.packetType;
  if (m_tagPending) record.setTag(static_cast<std::uint16_t>(sample.tagCount));
  m_tagPending = false;
  // A second that brought more than 50 frames runs into the next one; time must not step back
  // there.
  m_lastTime = std::max(stamp(sample.sampleCount), m_lastTime);
  record.Time = m_lastTime;
  m_records.append(record);
}

std::int32_t Recorder::stamp(std::int32_t sampleCount) {
  if (!m_withSound) return sampleCount * kSamplePeriod;
  std::int32_t correction = 0;
  if (sampleCount == 1 && m_previousSecondCount < kSamplesPerSecond) correction = -kCorrection;
  if (sampleCount == 1 && m_previousSecondCount > kSamplesPerSecond) correction = kCorrection;
  m_previousSecondCount = sampleCount;
  const std::int32_t time =
      (sampleCount - 1) * kSamplePeriod + m_elapsedSeconds * 1000 + correction;
  return std::max(time, 0);
}

bool Recorder::takeSoundPosition(std::int64_t bytes) {
  const auto second = static_cast<std::int32_t>(bytes / kSoundBytesPerSecond);
  if (second <= m_lastAudioSecond) return false;
  m_lastAudioSecond = second;
  m_elapsedSeconds = second - 1;
  return true;
}

void Recorder::forgetSoundPosition() {
  m_lastAudioSecond = 0;
  m_elapsedSeconds = 0;
}

}  // namespace qv3
