#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <random>

#include "instrument/capture.h"
#include "recording/sessionfile.h"
#include "tests/support/instrumentrig.h"
#include "tests/support/vectors.h"
#include "tools/replay/scriptrunner.h"

namespace qv3 {
namespace {

using nlohmann::json;

std::string replayFile(const std::string& name) {
  return test::vectorFolder() + "/replay/" + name;
}

std::vector<std::string> linesOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::vector<std::string> lines;
  for (std::string line; std::getline(file, line);) lines.push_back(line);
  return lines;
}

/// Every script of the index prints the lines, and gives the recording, that lie beside it.
TEST(ReplayVector, ScriptsGiveTheirLinesAndRecordings) {
  int scripts = 0;
  for (const json& entry : test::readVectors("replay/index.jsonl")) {
    const auto name = entry.at("name").get<std::string>();
    SCOPED_TRACE(name);
    std::vector<json> printed;
    ScriptRunner runner([&printed](const nlohmann::ordered_json& line) {
      printed.emplace_back(json::parse(line.dump()));
    });
    for (const std::string& line : linesOf(replayFile(name + ".jsonl"))) runner.run(line);
    const auto expected = linesOf(replayFile(name + ".expected.jsonl"));
    ASSERT_FALSE(expected.empty());
    ASSERT_EQ(printed.size(), expected.size());
    for (std::size_t n = 0; n < expected.size(); ++n) {
      ASSERT_EQ(printed[n], json::parse(expected[n])) << "line " << n + 1;
    }
    std::ifstream qvd(replayFile(name + ".expected.qvd"), std::ios::binary);
    if (qvd) {
      const std::vector<std::uint8_t> bytes{std::istreambuf_iterator<char>(qvd), {}};
      EXPECT_EQ(runner.recording(), bytes);
    }
    ++scripts;
  }
  EXPECT_GT(scripts, 0);
}

TEST(Script, BadLinesAreRefused) {
  std::vector<std::string> lines = {"",
                                    "{",
                                    "[]",
                                    R"({"t": 1})",
                                    R"({"rx": "P1234\r"})",
                                    R"({"t": "1", "rx": ""})",
                                    R"({"t": 0.4, "tick": true})"};
  for (const char* event :
       {R"("rx": 5)", R"("rx": "\u0100")", R"("set": "NoSuch", "value": 1)", R"("set": "DialType")",
        R"("set": "DialType", "value": 4294967297)", R"("set": "DialType", "value": null)",
        R"("set": "State", "value": 4)", R"("record": "pause")", R"("play": "00")",
        R"("knob": [1])", R"("bd": "x")", R"("mouse": "knob")", R"("unheard": 1)"}) {
    lines.push_back(std::string(R"({"t": 1, )") + event + '}');
  }
  for (const std::string& line : lines) {
    ScriptRunner runner([](const nlohmann::ordered_json&) {});
    for (int n = 0; n < 2; ++n) runner.run(R"({"t": 0.5, "tick": true})");
    EXPECT_THROW(runner.run(line), std::exception) << line;
  }
}

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
  void anyRecording() {
    instrument.startRecording(settings.AudioEnable, now);
    instrument.startData({upTo(86399), static_cast<std::uint16_t>(upTo(9999))}, now);
  }
  void anything() {
    const std::function<void()> rare[] = {
        [this] { anyKey(); },
        [this] { set("DialType", upTo(3)); },
        [this] { set("FreezeEnable", upTo(1) == 0); },
        [this] { instrument.knobMouse(upTo(20) / 10.0 - 1, upTo(20) / 10.0 - 1, 1, now); },
        [this] { instrument.bdMouse(upTo(1) == 0, now); },
        [this] { instrument.clockTick(now); },
        [this] { instrument.setNeedleTest(upTo(3) == 0, now); },
        [this] { anyRecording(); },
        [this] {
          if (upTo(4) == 0) instrument.stopRecording(now);
        }};
    const auto kind = static_cast<std::size_t>(upTo(40));
    if (kind < std::size(rare)) {
      rare[kind]();
    } else {
      anyFrames();
    }
  }
};

/// What was captured, replayed, ends where the instrument ended.
TEST_F(CaptureTest, ReplayGivesTheSameState) {
  connect();
  capture.begin(instrument, now);
  for (int n = 0; n < 4000; ++n) anything();
  receive("P7000\r");
  nlohmann::ordered_json last;
  ScriptRunner runner([&last](const nlohmann::ordered_json& printed) { last = printed; });
  std::ifstream script(file);
  for (std::string text; std::getline(script, text);) runner.run(text);
  const MeterState& state = instrument.state();
  EXPECT_EQ(last["NeedlePosition"], state.NeedlePosition);
  EXPECT_EQ(last["SetPoint"], state.SetPoint);
  EXPECT_EQ(last["BdTenths"], state.BdTenths);
  EXPECT_EQ(last["BaseText"], state.BaseText);
  EXPECT_EQ(last["ModeText"], state.ModeText);
  const Recorder& recorder = instrument.recorder();
  ASSERT_GT(recorder.records().count(), 0U);
  EXPECT_EQ(runner.recording(), fileBytes(recorder.records(), recorder.sessionStart(), {}));
}

}  // namespace
}  // namespace qv3
