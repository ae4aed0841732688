#include "tests/step/realprogram.h"

#include <QDir>
#include <QEventLoop>
#include <charconv>
#include <fstream>
#include <stdexcept>

#include "recording/recorder.h"

namespace qv3::test {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds kLook{20};
constexpr milliseconds kPatience{30000};

Options optionsFor(const std::string& folder) {
  Options options;
  options.home = folder;
  return options;
}

PortTable portsWith(const std::string& meter) {
  PortTable ports;
  if (!meter.empty()) static_cast<void>(ports.name("1=" + meter));
  return ports;
}

void leaveSettings(const std::string& folder, bool meter) {
  std::ofstream(folder + "qv3_Varnel.cfg")
      << "\"\"\r\n0\r\n"
      << (meter ? 1 : 0) << "\r\n24\r\n0\r\n0\r\n19200\r\n0\r\n";
  std::ofstream(folder + "qv3_Varnel.ini")
      << "[Recording]\r\nSavePath=" << folder << "\r\nLoadPath=" << folder
      << "\r\nRecordingMode=2\r\nSuffixType=0\r\nRecPromptEnable=False\r\n";
}

}  // namespace

void runUntil(const std::function<bool()>& holds, milliseconds longest, const char* otherwise) {
  QEventLoop loop;
  QTimer look;
  bool held = holds();
  QObject::connect(&look, &QTimer::timeout, &loop, [&] {
    held = holds();
    if (held) loop.quit();
  });
  look.start(kLook);
  QTimer::singleShot(longest, &loop, [&loop] { loop.quit(); });
  if (!held) loop.exec();
  if (!held) throw std::runtime_error(otherwise);
}

MediaReply PositionLog::send(std::string_view command) {
  const Moment at = momentNow();
  const MediaReply reply = m_media.send(command);
  if (command == "status WavFile position" && reply.ok()) {
    std::int64_t bytes = 0;
    std::from_chars(reply.text.data(), reply.text.data() + reply.text.size(), bytes);
    m_positions.push_back({at, static_cast<double>(bytes) * 1000 / kSoundBytesPerSecond});
  }
  return reply;
}

std::optional<Moment> PositionLog::reached(double time) const {
  for (std::size_t i = 1; i < m_positions.size(); ++i) {
    const Position& from = m_positions[i - 1];
    const Position& to = m_positions[i];
    if (to.milliseconds < time) continue;
    const double span = to.milliseconds - from.milliseconds;
    if (span <= 0) return to.at;
    return from.at + (to.at - from.at) * (time - from.milliseconds) / span;
  }
  return std::nullopt;
}

RealProgram::RealProgram(const QString& folder, const std::string& meter)
    : m_folder(folder.toStdString() + "/"),
      m_withMeter(!meter.empty()),
      m_machine(optionsFor(m_folder), portsWith(meter), substitutes()) {
  leaveSettings(m_folder, m_withMeter);
}

Substitutes RealProgram::substitutes() {
  Substitutes substitutes;
  substitutes.media = [this](MediaPort& own) -> MediaPort& { return m_positions.emplace(own); };
  return substitutes;
}

void RealProgram::start() {
  QTimer::singleShot(0, &window(), [this] { program().start(); });
  runUntil([this] { return window().isVisible() && idle(); }, kPatience, "it does not come up");
  if (program().instrument().programState() != (m_withMeter ? 1 : 0)) {
    throw std::runtime_error("the meter is not found");
  }
}

void RealProgram::load() {
  emit window().transport().numberedFilesRequested();
  emit window().transport().numberedFileChosen(QStringLiteral("001"));
  const auto* play = window().findChild<QAbstractButton*>(QStringLiteral("cmdPlay"));
  runUntil([play] { return play->isEnabled(); }, kPatience, "the session is not loaded");
}

void RealProgram::press(const char* name) {
  auto* button = window().findChild<QAbstractButton*>(QLatin1String(name));
  runUntil([button] { return button->isEnabled(); }, kPatience, name);
  button->click();
}

void RealProgram::finish(milliseconds longest) {
  runUntil([this] { return idle(); }, longest, "something does not end");
}

}  // namespace qv3::test
