#include "link/streamdecoder.h"

#include <algorithm>
#include <cmath>

#include "measure/numbers.h"

namespace qv3 {
namespace {

constexpr std::size_t kOverflow = 50;  // characters waiting beyond which none is worth parsing
constexpr std::int16_t kHealthy = 5;
constexpr std::int16_t kMostErrorFrames = 5;
constexpr char kEnd = '\r';

// No frame of any model is told apart by what follows its sixth character, so a line without end
// needs no more than this.
constexpr std::size_t kCarryLimit = 7;

constexpr double kPhaseStep = 0.015;
constexpr double kWholeTurn = 6.28318;
constexpr double kSwing = 1000;
constexpr double kMiddle = 32768;

const std::string kInputError = "Input Error";
const std::string kInputOk = "Input OK";
const std::string kRecording = "Recording";

}  // namespace

void StreamDecoder::Com_Input_Parse(const LinkSettings& settings) {
  if (m_port.waiting() > kOverflow) {
    overflow(settings);
    return;
  }
  m_state.NewReading = false;
  const int lines = splitLines(m_frame);
  if (settings.recording) m_state.SampleCount += lines;
  if (lines == 0 || m_frame.empty()) return;
  m_events.updateRecordTime();
  const Frame frame = decodeFrame(m_state.MeterVersion, m_frame);
  if (!accept(frame)) {
    inputError(settings);
    return;
  }
  if (settings.recording) m_state.RecordTag = frame.recordTag;
  if (lines > settings.LagLimit) {
    lightLagLamp(settings);
    GoodEvents = 0;
    return;
  }
  recover(settings);
}

void StreamDecoder::syntheticReading(const LinkSettings& settings) {
  m_port.clearReceived();
  InputCarry.clear();
  if (settings.recording) {
    m_events.updateRecordTime();
    ++m_state.SampleCount;
    m_state.RecordTag = 'P';
  }
  m_state.NewReading = true;
  m_phase += kPhaseStep;
  if (m_phase > kWholeTurn) m_phase = 0;
  m_state.Reading = roundHalfEven(std::sin(m_phase) * kSwing + kMiddle);
}

void StreamDecoder::overflow(const LinkSettings& settings) {
  m_port.clearReceived();
  InputCarry.clear();
  lightLagLamp(settings);
  GoodEvents = 0;
}

/// Leaves the last complete frame in `frame` and what follows it in the carry; returns how many
/// frames were complete.
int StreamDecoder::splitLines(std::string& frame) {
  std::string_view text = m_port.peek();
  int lines = 0;
  frame.clear();
  for (auto end = text.find(kEnd); end != std::string_view::npos; end = text.find(kEnd)) {
    ++lines;
    frame = InputCarry;
    frame += text.substr(0, end);
    InputCarry.clear();
    text.remove_prefix(end + 1);
  }
  keepCarry(text);
  m_port.clearReceived();
  return lines;
}

void StreamDecoder::keepCarry(std::string_view rest) {
  InputCarry += rest.substr(0, kCarryLimit - std::min(kCarryLimit, InputCarry.size()));
}

/// Carries out what the frame says; false if it breaks its model's rule. A press of the switch
/// counts though the digits beside it are bad.
bool StreamDecoder::accept(const Frame& frame) {
  if (frame.switchPressed) m_events.switchPressed();
  switch (frame.kind) {
    case FrameKind::Malformed:
      return false;
    case FrameKind::Ignored:
      return true;
    case FrameKind::Fault:
      faultFrame();
      return true;
    case FrameKind::Remote:
      remoteReading(frame);
      return true;
    case FrameKind::Local:
      m_events.sensorReported(false);
      break;
    case FrameKind::Reading:
      break;
  }
  m_state.Reading = frame.reading;
  m_state.NewReading = true;
  return true;
}

/// While errors are counted the remote sensor's readings are stored but not shown.
void StreamDecoder::remoteReading(const Frame& frame) {
  m_state.Reading = frame.reading;
  m_events.sensorReported(true);
  if (ErrorFrames >= 1) {
    --ErrorFrames;
  } else {
    m_state.NewReading = true;
  }
}

void StreamDecoder::faultFrame() {
  if (++ErrorFrames <= kMostErrorFrames) return;
  ErrorFrames = kMostErrorFrames;
  if (m_state.ModeText != kInputError) m_events.showStatus(kInputError, kRed);
}

void StreamDecoder::inputError(const LinkSettings& settings) {
  GoodEvents = 0;
  if (m_state.ModeText != kInputError) m_events.showStatus(kInputError, kRed);
  m_events.Update_LED(settings.LED_Lag_Color);
}

void StreamDecoder::recover(const LinkSettings& settings) {
  if (GoodEvents < kHealthy && ++GoodEvents == kHealthy) {
    if (m_state.LampColor == settings.LED_Lag_Color) m_events.Update_LED(settings.Dial_Color);
    const std::string& status = settings.recording ? kRecording : kInputOk;
    if (m_state.ModeText != status) m_events.showStatus(status, settings.Text_Color);
  }
  // An error that a fault frame shows stands beside good events: five more are needed to clear it.
  if (GoodEvents == kHealthy && m_state.ModeText == kInputError) GoodEvents = 0;
}

void StreamDecoder::lightLagLamp(const LinkSettings& settings) {
  if (m_state.LampColor != settings.LED_Lag_Color) m_events.Update_LED(settings.LED_Lag_Color);
}

}  // namespace qv3
