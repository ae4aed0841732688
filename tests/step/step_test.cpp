#include <gtest/gtest.h>

#include <QEvent>

#include "display/dialpanel.h"
#include "tests/step/stepruns.h"

namespace qv3::test {
namespace {

constexpr int kClaps = 20;

/// Sees when a dial is painted with its needle elsewhere than before.
class PaintEye final : public QObject {
 public:
  explicit PaintEye(DialPanel& dial) : m_dial(dial) { dial.installEventFilter(this); }

  const std::vector<Moment>& painted() const { return m_painted; }

 private:
  bool eventFilter(QObject*, QEvent* event) override {
    if (event->type() != QEvent::Paint) return false;
    const QString needle = m_dial.accessibleValue();
    if (needle != m_needle) m_painted.push_back(momentNow());
    m_needle = needle;
    return false;
  }

  DialPanel& m_dial;
  QString m_needle;
  std::vector<Moment> m_painted;
};

/// On a busy computer a clap or two may be anywhere; benchmarks/run step says what a quiet one
/// does.
void expectInStep(const Offsets& offsets) {
  EXPECT_LE(offsets.lost(), 1U);
  EXPECT_GE(offsets.count(), static_cast<std::size_t>(kClaps) - 1);
  EXPECT_LE(offsets.reach(0.5), 20);
  EXPECT_LE(offsets.reach(0.8), 40);
}

class InStep : public testing::Test {
 protected:
  static constexpr int kSoundPpm = 200;

  static void SetUpTestSuite() { s_server = skewedServer(kSoundPpm); }
  static void TearDownTestSuite() { s_server.reset(); }

  static std::unique_ptr<PulseServer> s_server;
};

std::unique_ptr<PulseServer> InStep::s_server;

TEST_F(InStep, ASessionIsSeenAndHeardAtTheTimeOfItsRecords) {
  const MakeEye eye = [](MainWindow& window) -> Eye {
    auto paint = std::make_shared<PaintEye>(window.dial());
    return [paint] { return paint->painted(); };
  };
  const Played played = playSession(*s_server, {kClaps, kSoundPpm, -200, eye});
  expectInStep(played.soundToTime);
  expectInStep(played.needleToTime);
  expectInStep(played.needleToSound);
}

TEST_F(InStep, ARecordingHasAClapAtTheTimeOfTheReadingThatCameWithIt) {
  expectInStep(recordSession(*s_server, {kClaps, -200, 200}).needleToSound);
}

}  // namespace
}  // namespace qv3::test
