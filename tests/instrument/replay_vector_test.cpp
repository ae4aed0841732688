#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <sstream>

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

}  // namespace
}  // namespace qv3
