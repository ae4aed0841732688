#include <gtest/gtest.h>

#include "tests/step/painteye.h"
#include "tests/step/stepruns.h"

namespace qv3::test {
namespace {

constexpr int kClaps = 20;

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

  static void SetUpTestSuite() {
    s_server = skewedServer(kSoundPpm);
    ASSERT_TRUE(s_server) << "no sound server";
  }
  static void TearDownTestSuite() { s_server.reset(); }

  static std::unique_ptr<PulseServer> s_server;
};

std::unique_ptr<PulseServer> InStep::s_server;

TEST_F(InStep, ASessionIsSeenAndHeardAtTheTimeOfItsRecords) {
  const MakeEye eye = [](MainWindow& window) -> Eye {
    auto paint = std::make_shared<PaintEye>(window.dial());
    return [paint] { return paint->painted(); };
  };
  const PlayResult result = playSession(*s_server, {kClaps, kSoundPpm, -200, eye});
  ASSERT_EQ(result.error, "");
  expectInStep(result.played.soundToTime);
  expectInStep(result.played.needleToTime);
  expectInStep(result.played.needleToSound);
}

TEST_F(InStep, ARecordingHasAClapAtTheTimeOfTheReadingThatCameWithIt) {
  const RecordResult result = recordSession(*s_server, {kClaps, -200, 200});
  ASSERT_EQ(result.error, "");
  expectInStep(result.needleToSound);
}

}  // namespace
}  // namespace qv3::test
