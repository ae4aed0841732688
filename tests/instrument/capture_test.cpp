#include "instrument/capture.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <random>

#include "recording/sessionfile.h"
#include "tests/support/instrumentrig.h"

namespace qv3 {
namespace {

namespace fs = std::filesystem;

struct CaptureTest : testing::Test, test::InstrumentRig {
  fs::path folder = fs::temp_directory_path() / ("qv3-capture-" + std::to_string(getpid()));
  fs::path file = folder / "stream.jsonl";
  Capture capture{file.string(), settings};
  std::mt19937 random{20};

  CaptureTest() {
    fs::create_directories(folder);
    instrument.setTap(&capture);
    settings.AudioEnable = false;
  }
  ~CaptureTest() override { fs::remove_all(folder); }

  int upTo(int limit) { return std::uniform_int_distribution<>(0, limit)(random); }

  void start(const std::string& model) {
    connect(model);
    capture.begin(instrument, now);
  }

  void anyKey() {
    constexpr Key kKeys[] = {Key::Space, Key::Up, Key::Down, Key::C,     Key::Z,
                             Key::F,     Key::B,  Key::T,    Key::Shift, Key::Other};
    if (upTo(1) == 0) instrument.keyUp(now);
    instrument.keyDown(kKeys[upTo(9)], now);
  }

  void anyFrames() {
    std::string text;
    for (int frames = upTo(2); frames >= 0; --frames) {
      char frame[8];
      std::snprintf(frame, sizeof frame, "P%04X\r", 0x7000 + upTo(400) * (upTo(20) == 0 ? 40 : 1));
      text += frame;
    }
    if (upTo(30) == 0) text[static_cast<std::size_t>(upTo(5))] = static_cast<char>(upTo(255));
    receive(text);
  }

  void anything() {
    switch (upTo(40)) {
      case 0:
        anyKey();
        break;
      case 1:
        set("DialType", upTo(3));
        break;
      case 2:
        instrument.knobMouse(upTo(20) / 10.0 - 1, upTo(20) / 10.0 - 1, 1, now);
        break;
      case 3:
        instrument.bdMouse(upTo(1) == 0, now);
        break;
      case 4:
        instrument.startRecording(settings.AudioEnable, now);
        instrument.startData({upTo(86399), static_cast<std::uint16_t>(upTo(9999))}, now);
        break;
      case 5:
        instrument.clockTick(now);
        break;
      case 6:
        set("FreezeEnable", upTo(1) == 0);
        break;
      case 7:
        instrument.setNeedleTest(upTo(3) == 0, now);
        break;
      case 8:
        if (upTo(4) == 0) instrument.stopRecording(now);
        break;
      default:
        anyFrames();
    }
  }
};

/// What was captured, replayed, ends where the instrument ended.
TEST_F(CaptureTest, ReplayGivesTheSameState) {
  start("3A");
  for (int n = 0; n < 4000; ++n) anything();
  receive("P7000\r");
  nlohmann::ordered_json last;
  ScriptRunner runner([&last](const nlohmann::ordered_json& printed) { last = printed; });
  std::ifstream script(file);
  for (std::string text; std::getline(script, text);) runner.run(text);
  const MeterState& state = instrument.state();
  EXPECT_EQ(last["NeedlePosition"], state.NeedlePosition);
  EXPECT_EQ(last["NeedleValue"], state.NeedleValue);
  EXPECT_EQ(last["SetPoint"], state.SetPoint);
  EXPECT_EQ(last["BdTenths"], state.BdTenths);
  EXPECT_EQ(last["BaseText"], state.BaseText);
  EXPECT_EQ(last["ModeText"], state.ModeText);
  EXPECT_EQ(last["BodyMotion"], state.BodyMotion);
  const Recorder& recorder = instrument.recorder();
  ASSERT_GT(recorder.records().count(), 0U);
  EXPECT_EQ(runner.recording(), fileBytes(recorder.records(), recorder.sessionStart(), {}));
}

TEST_F(CaptureTest, EachConnectionHasAFileOfItsOwn) {
  start("40");
  receive("O1234\r");
  start("31");
  receive("L1234\r");
  EXPECT_TRUE(fs::exists(file));
  EXPECT_TRUE(fs::exists(file.string() + "-2"));
  EXPECT_TRUE(capture.failure().empty());
}

TEST_F(CaptureTest, AFileThatCannotBeWrittenIsSaid) {
  fs::remove_all(folder);
  start("3A");
  EXPECT_NE(capture.failure().find(file.string()), std::string::npos);
}

}  // namespace
}  // namespace qv3
