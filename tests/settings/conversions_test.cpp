#include "settings/conversions.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <limits>
#include <map>

#include "measure/numbers.h"
#include "settings/calendar.h"
#include "settings/derived.h"
#include "tests/support/vectors.h"

namespace qv3 {
namespace {

using nlohmann::json;

template <typename Value>
json orNull(const std::optional<Value>& value) {
  return value ? json(*value) : json(nullptr);
}

CalendarTime moment(const std::string& iso) {
  CalendarTime time;
  const int fields = std::sscanf(iso.c_str(), "%d-%d-%dT%d:%d:%d", &time.year, &time.month,
                                 &time.day, &time.hour, &time.minute, &time.second);
  if (fields != 6) throw std::runtime_error("No moment: " + iso);
  return time;
}

json formatted(double value, const std::string& pattern) {
  static const std::map<std::string, std::string (*)(double)> kPatterns = {
      {"0.0#", formatBase}, {"#0.0", formatTenths}, {"000", formatThreeDigits}};
  return kPatterns.at(pattern)(value);
}

json dated(const std::string& iso, const std::string& pattern) {
  static const std::map<std::string, std::string (*)(const CalendarTime&)> kPatterns = {
      {"yy-mm-dd__Hh.Nn.Ss", formatFileStamp},
      {"h:mm AM/PM", formatClock12},
      {"HH:mm", formatClock24}};
  return kPatterns.at(pattern)(moment(iso));
}

json converted(const std::string& fn, const json& args) {
  if (fn == "round") return orNull(roundToLong(args[0]));
  if (fn == "format") return formatted(args[0], args[1]);
  if (fn == "date") return dated(args[0], args[1]);
  if (fn == "int_divide") return args[0].get<std::int64_t>() / args[1].get<std::int64_t>();
  if (fn == "mod") return args[0].get<std::int64_t>() % args[1].get<std::int64_t>();
  const std::string text = test::bytesOf(args[0]);
  if (fn == "to_boolean") return orNull(toBoolean(text));
  if (fn == "to_long") return orNull(toLong(text));
  if (fn == "to_integer") return orNull(toInteger(text));
  if (fn == "to_byte") return orNull(toByte(text));
  if (fn == "to_single") return orNull(toSingle(text));
  throw std::runtime_error("No such function: " + fn);
}

TEST(ConvertVectors, GiveWhatTheySay) {
  for (const json& vector : test::readVectors("convert.jsonl")) {
    EXPECT_EQ(converted(vector["fn"], vector["args"]), vector["expected"]) << vector.dump();
  }
}

TEST(Conversions, NumberGrammar) {
  // The mantissa's own length decides together with the exponent.
  const std::string zeros(400, '0');
  using Row = std::pair<std::string, double>;
  for (const auto& [text, expected] :
       {Row{"+7", 7}, Row{".5", 0.5}, Row{"5.", 5}, Row{"-.25E1", -2.5}, Row{"1,2,3", 123},
        Row{"1e+2", 100}, Row{"0.0000E-7", 0}, Row{"1E-99999999999999999999", 0},
        Row{"0." + zeros + "1", 0}, Row{"1" + zeros + "E-400", 1},
        Row{"0." + zeros + "1E401", 1}}) {
    EXPECT_EQ(toDouble(text), expected) << text;
  }
  EXPECT_EQ(toDouble("1" + zeros), std::nullopt);
  for (const char* text :
       {"1E99999999999999999999", "", ".", "+", ",1", "1,", "1,.5", "1.2,3", "1e1,0", "- 5", "5-",
        "1d2", "inf", "nan", "1.2.3", "\t5", "e5", "&H10", "\xd9\xa1"}) {
    EXPECT_EQ(toDouble(text), std::nullopt) << text;
  }
  EXPECT_EQ(toSingle("1" + zeros + "E-500"), 0.0F);
  EXPECT_EQ(toSingle("-0." + zeros + "1E500"), std::nullopt);
}

TEST(Conversions, SinglesAreRoundedOnce) {
  // Through a double this would be a tie and go to the even neighbour below.
  EXPECT_EQ(toSingle("1.00000005960464477539062500000001"), 1.00000011920928955F);
  EXPECT_EQ(toSingle("1e-45"), std::numeric_limits<float>::denorm_min());
  EXPECT_EQ(toSingle("3.4028235e38"), std::numeric_limits<float>::max());
}

TEST(Conversions, ValuesReadBackFromTheirText) {
  for (const std::int32_t value : {0, -1, 32767, -2147483647 - 1, 2147483647}) {
    EXPECT_EQ(toLong(fromLong(value)), value);
  }
  for (const double value : {0.0, -0.5, 1200.5, 1.0 / 3, 1e-20, 123456789.125}) {
    EXPECT_EQ(toDouble(fromDouble(value)), value);
  }
  EXPECT_EQ(fromDouble(-0.0), "0");
  EXPECT_EQ(fromBoolean(true) + fromBoolean(false), "TrueFalse");
}

TEST(Conversions, ClocksAtTheTurnsOfTheDay) {
  for (const auto& [hour, expected] :
       {std::pair(0, "12:05 AM"), std::pair(1, "1:05 AM"), std::pair(11, "11:05 AM"),
        std::pair(12, "12:05 PM"), std::pair(23, "11:05 PM")}) {
    EXPECT_EQ(formatClock12({2024, 2, 29, hour, 5, 9}), expected);
  }
}

TEST(Conversions, IndicesOutOfRangeActAsTheNearest) {
  const struct {
    int index, threshold, lag, mode;
  } kRows[] = {{-32768, 30, 1, 1}, {0, 30, 1, 1},  {1, 30, 1, 1},  {2, 50, 2, 2},
               {3, 100, 3, 2},     {4, 100, 4, 2}, {5, 100, 5, 2}, {32767, 100, 5, 2}};
  for (const auto& row : kRows) {
    EXPECT_EQ(bodyMotionThreshold(row.index), row.threshold) << row.index;
    EXPECT_EQ(lagLimit(row.index), row.lag) << row.index;
    EXPECT_EQ(static_cast<int>(switchMode(row.index)), row.mode) << row.index;
  }
}

}  // namespace
}  // namespace qv3
