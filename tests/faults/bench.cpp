#include "tests/faults/bench.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <csignal>

namespace qv3::test {
namespace {

QProcessEnvironment environmentFor(const QString& folder, const PulseServer* room) {
  QProcessEnvironment variables =
      room != nullptr ? room->environment() : QProcessEnvironment::systemEnvironment();
  if (room == nullptr) variables.insert("PULSE_SERVER", "unix:/nowhere/socket");
  variables.insert("QT_QPA_PLATFORM", "offscreen");
  variables.insert("HOME", folder);
  variables.insert("XDG_DATA_HOME", folder + "/data");
  return variables;
}

void write(const QString& path, const QByteArray& text) {
  QFile file(path);
  ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
  file.write(text);
}

}  // namespace

Bench::Bench(const std::string& recording, Sound sound, PulseServer* room)
    : m_recording(recording),
      m_sound(sound),
      m_room(room),
      m_environment(environmentFor(m_folder.path(), room)),
      m_meter(m_folder.path()) {
  for (const QString& folder : {saves(), elsewhere()}) EXPECT_TRUE(QDir().mkpath(folder));
}

void Bench::configure(const QString& home, int port) const {
  ASSERT_TRUE(QDir().mkpath(home));
  const QByteArray ini = home.toUtf8() + "/qv3_Varnel.ini";
  write(home + "/qv3_Varnel.cfg",
        '"' + ini + "\"\n0\n" + QByteArray::number(port) + "\n20\n0\n0\n0\n0\n");
  write(ini, "[Recording]\r\nSuffixType=0\r\nSavePath=" + saves().toUtf8() +
                 "/\r\nAudioEnable=" + (m_sound != Sound::Off ? "True" : "False") + "\r\n" +
                 QByteArray::fromStdString(m_recording));
}

void Bench::startLive() {
  m_program = another(home(), m_meter.link());
  ASSERT_TRUE(m_program->sees([](const Seen& seen) {
    return seen.operation == Operation::None && seen.programState == 1 && seen.paints > 5;
  }));
}

void Bench::startWithoutMeter() {
  m_program.reset();
  configure(home(), 0);
  m_program = std::make_unique<DrivenProgram>(QStringList{"--home", home()}, m_environment);
}

std::unique_ptr<DrivenProgram> Bench::another(const QString& home, const QString& meter) {
  configure(home, 1);
  return std::make_unique<DrivenProgram>(QStringList{"--home", home, "--port", "1=" + meter},
                                         m_environment);
}

void Bench::record() {
  ASSERT_TRUE(m_program->tell("click cmdRecord").done);
  recordMore(60);
}

void Bench::recordMore(int samples) {
  const int before = m_program->look().recorded;
  ASSERT_TRUE(m_program->sees([&](const Seen& seen) { return seen.recorded >= before + samples; }));
}

void Bench::stop() {
  if (m_program->look().operation == Operation::Recording) m_program->tell("click cmdStop");
  ASSERT_TRUE(m_program->reaches(Operation::None));
}

void Bench::play() {
  ASSERT_TRUE(m_program->tell("click cmdPlay").done);
  ASSERT_EQ(m_program->look().operation, Operation::Playing);
}

void Bench::clearBoxes() {
  ASSERT_TRUE(m_program->sees([this](const Seen& seen) {
    if (seen.dialog.isEmpty()) return true;
    for (const char* answer : {"answer OK", "answer Cancel", "answer No", "cancel"}) {
      if (m_program->tell(answer).done) break;
    }
    return false;
  }));
}

void Bench::saveElsewhere() {
  ASSERT_TRUE(m_program->look().unsaved);
  ASSERT_TRUE(m_program->tell("click cmdSave").done);
  ASSERT_TRUE(
      m_program->sees([](const Seen& seen) { return !seen.unsaved || !seen.dialog.isEmpty(); }));
  if (m_program->look().unsaved) {
    ASSERT_TRUE(m_program->tell("choose " + elsewhere() + "/Take").done);
  }
  ASSERT_TRUE(m_program->sees([](const Seen& seen) { return !seen.unsaved; }));
  EXPECT_EQ(m_program->look().dialog, "");
}

void Bench::recover() {
  startWithoutMeter();
  ASSERT_TRUE(m_program->opens("msgRecover"));
  ASSERT_TRUE(m_program->tell("answer Recover").done);
  saveElsewhere();
}

void Bench::expectSaved(int samples) {
  ASSERT_TRUE(eventually([this] { return !saved().isEmpty(); }));
  ASSERT_EQ(saved().size(), 1) << saved().join(' ').toStdString();
  const SavedPair pair = readPair(saved().first(), m_meter.sent());
  EXPECT_GE(static_cast<int>(pair.records.size()), samples);
  EXPECT_EQ(pair.soundSeconds >= 0, m_sound != Sound::Off);
  EXPECT_EQ(names(recovery()), QStringList()) << "what was saved is not kept twice";
}

void Bench::expectHeardToTheEnd() {
  ASSERT_EQ(saved().size(), 1);
  const SavedPair pair = readPair(saved().first(), m_meter.sent());
  EXPECT_GE(pair.heardSeconds, pair.dataSeconds() - 0.1);
}

void Bench::expectNothingLeft() {
  startWithoutMeter();
  ASSERT_TRUE(m_program->sees(
      [](const Seen& seen) { return seen.operation == Operation::None && seen.paints > 0; }));
  EXPECT_EQ(m_program->look().dialog, "");
  EXPECT_EQ(names(recovery()), QStringList());
}

QString Bench::folderFor(const QString& name) const {
  EXPECT_TRUE(QDir().mkpath(path(name)));
  return path(name);
}

QStringList Bench::saved() const {
  QStringList found;
  QDirIterator files(m_folder.path(), {"*.qvd", "*.qvd~*"}, QDir::Files,
                     QDirIterator::Subdirectories);
  while (files.hasNext()) found << files.next();
  return found;
}

QStringList Bench::names(const QString& folder) {
  return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
}

std::uint64_t Bench::sizeIn(const QString& folder, const QString& pattern) const {
  const auto files = QDir(folder).entryInfoList({pattern}, QDir::Files);
  return files.isEmpty() ? 0 : static_cast<std::uint64_t>(files.first().size());
}

}  // namespace qv3::test
