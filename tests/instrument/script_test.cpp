#include <gtest/gtest.h>

#include "tools/replay/scriptrunner.h"

namespace qv3 {
namespace {

TEST(Script, BadLinesAreRefused) {
  for (const char* line :
       {"", "{", "[]", "{\"t\": 1}", "{\"rx\": \"P1234\\r\"}", "{\"t\": \"1\", \"rx\": \"\"}",
        "{\"t\": -1, \"tick\": true}", "{\"t\": 1, \"rx\": 5}", "{\"t\": 1, \"rx\": \"\\u0100\"}",
        "{\"t\": 1, \"set\": \"NoSuch\", \"value\": 1}", "{\"t\": 1, \"set\": \"DialType\"}",
        "{\"t\": 1, \"set\": \"State\", \"value\": 4}", "{\"t\": 1, \"record\": \"pause\"}",
        "{\"t\": 1, \"play\": \"00\"}", "{\"t\": 1, \"knob\": [1]}", "{\"t\": 1, \"bd\": \"x\"}",
        "{\"t\": 1, \"mouse\": \"knob\"}", "{\"t\": 1, \"unheard\": 1}"}) {
    ScriptRunner runner([](const nlohmann::ordered_json&) {});
    EXPECT_THROW(runner.run(line), std::exception) << line;
  }
}

TEST(Script, TimeMayNotFall) {
  ScriptRunner runner([](const nlohmann::ordered_json&) {});
  runner.run("{\"t\": 2, \"tick\": true}");
  EXPECT_NO_THROW(runner.run("{\"t\": 2, \"tick\": true}"));
  EXPECT_THROW(runner.run("{\"t\": 1.9, \"tick\": true}"), std::exception);
}

}  // namespace
}  // namespace qv3
