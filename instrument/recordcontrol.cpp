#include "instrument/recordcontrol.h"

#include <chrono>
#include <utility>

namespace qv3 {
namespace {

using std::chrono::seconds;

constexpr Instant kLeadIn = seconds{1};
constexpr Instant kLongestWait = seconds{3};
constexpr Instant kSilence = seconds{1};
constexpr std::int32_t kSamplesPerSecond = 50;
constexpr std::int64_t kLongestSound = 26LL * 3600;  // a wav file ends at 4 GiB

constexpr const char* kRecordFormat =
    "set WavFile bitspersample 16 channels 1 alignment 2 samplespersec 22050 bytespersec 44100 "
    "time format bytes format tag pcm wait";

}  // namespace

SessionStart sessionStartAt(const CalendarTime& moment) {
  using namespace std::chrono;
  const sys_days date = year{moment.year} / month{static_cast<unsigned>(moment.month)} /
                        day{static_cast<unsigned>(moment.day)};
  constexpr sys_days kEpoch = year{1999} / December / 31;
  return {moment.hour * 3600 + moment.minute * 60 + moment.second,
          static_cast<std::uint16_t>((date - kEpoch).count())};
}

std::optional<std::int64_t> MediaSoundClock::position() {
  return m_port.send("status WavFile position").number();
}

RecordControl::RecordControl(Instrument& instrument, MediaPort& media, std::string timingTrack,
                             RecordEvents& events)
    : m_instrument(instrument),
      m_media(media),
      m_timingTrack(std::move(timingTrack)),
      m_events(events) {
  m_instrument.setLinkLost([this](const Now& now) { stop(Cause::LinkLost, now); });
}

RecordControl::~RecordControl() {
  m_instrument.setLinkLost({});
}

void RecordControl::start(const Now& now) {
  if (m_instrument.programState() >= 2) return;
  m_withSound = prepareSound();
  m_stepBegan = now.steady;
  m_lastFrame = now.steady;
  m_instrument.startRecording(m_withSound, now);
}

/// Has the device recording, or the timing track open; true if there is sound.
bool RecordControl::prepareSound() {
  m_media.send("close WavFile");
  if (m_instrument.core().settings.AudioEnable && startSound()) return true;
  m_media.send("open \"" + m_timingTrack + "\" type mpegvideo alias WavFile");
  return false;
}

/// False if the device keeps no sound. It is closed then: an empty one would end each playback as
/// it begins.
bool RecordControl::startSound() {
  m_media.send("open new type waveaudio alias WavFile");
  m_media.send(kRecordFormat);
  const MediaReply reply = m_media.send("record WavFile");
  if (reply.ok()) return true;
  m_media.send("close WavFile");
  m_events.soundRefused(m_media.errorText(reply.code));
  return false;
}

void RecordControl::stop(Cause cause, const Now& now) {
  if (operation() == Operation::LeadIn) {
    if (cause == Cause::LinkLost) {
      m_cause = cause;
      end(now);
    }
    return;
  }
  if (operation() != Operation::Recording) return;
  m_cause = cause;
  m_stepBegan = now.steady;
  m_stopSecond = wholeSeconds();
  const std::int32_t count = m_instrument.state().SampleCount;
  m_stopCount = (count + kSamplesPerSecond - 1) / kSamplesPerSecond * kSamplesPerSecond;
  m_instrument.setOperation(Operation::Stopping);
  pollStop(now);
}

void RecordControl::giveUp(const Now& now) {
  if (m_instrument.programState() != 3) return;
  m_media.send("stop WavFile");
  m_instrument.stopRecording(now);
}

void RecordControl::poll(const Now& now, const CalendarTime& wall) {
  if (operation() == Operation::LeadIn) {
    pollLeadIn(now, wall);
  } else if (operation() == Operation::Stopping) {
    pollStop(now);
  } else if (operation() == Operation::Recording && m_withSound &&
             wholeSeconds() >= kLongestSound) {
    stop(Cause::User, now);
  }
}

void RecordControl::pollLeadIn(const Now& now, const CalendarTime& wall) {
  const bool over = m_withSound ? wholeSeconds() >= 1 : passed(m_stepBegan, kLeadIn, now);
  if (!over && !passed(m_stepBegan, kLongestWait, now)) return;
  const SessionStart start = sessionStartAt(wall);
  m_instrument.startData(start, now);
  m_events.dataStarted(start);
}

void RecordControl::received(const Now& now) {
  m_lastFrame = now.steady;
  if (operation() == Operation::Stopping) pollStop(now);
}

void RecordControl::pollStop(const Now& now) {
  bool over = passed(m_stepBegan, kLongestWait, now);
  if (m_withSound) {
    over = over || wholeSeconds() > m_stopSecond;
  } else {
    over = over || m_cause == Cause::LinkLost || passed(m_lastFrame, kSilence, now) ||
           m_instrument.state().SampleCount >= m_stopCount;
  }
  if (over) end(now);
}

void RecordControl::end(const Now& now) {
  if (m_withSound) {
    m_media.send("stop WavFile");
    m_media.send("seek WavFile to start");
    m_media.send("delete WavFile from 0 to 44100");
  }
  if (m_cause == Cause::LinkLost) {
    m_instrument.endRecordingByLoss(now);
  } else {
    m_instrument.stopRecording(now);
  }
  m_cause = Cause::User;
  m_events.recordingEnded(!m_instrument.recorder().records().empty());
}

std::int64_t RecordControl::wholeSeconds() {
  return MediaSoundClock(m_media).position().value_or(0) / kSoundBytesPerSecond;
}

bool RecordControl::passed(Instant since, Instant wait, const Now& now) const {
  return now.steady - since >= wait;
}

}  // namespace qv3
