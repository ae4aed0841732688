#include "tools/metersim/core/signalspec.h"

#include <fstream>
#include <sstream>

#include "tools/metersim/core/skinsignal.h"
#include "tools/metersim/core/text.h"

namespace qv3::metersim {
namespace {

enum class Quantity { Reading, Seconds };

struct Parameter {
  const char* name;
  Quantity quantity;
  double value;  ///< where the user names none
};

struct KindRow {
  std::string_view name;
  SignalKind kind;
  std::vector<Parameter> parameters;
};

const std::vector<KindRow>& kinds() {
  static const std::vector<KindRow> rows{
      {"skin", SignalKind::Skin, {}},
      {"constant", SignalKind::Constant, {{"READING", Quantity::Reading, 26000}}},
      {"ramp",
       SignalKind::Ramp,
       {{"FROM", Quantity::Reading, 30000},
        {"TO", Quantity::Reading, 22000},
        {"SECONDS", Quantity::Seconds, 20}}},
      {"sine",
       SignalKind::Sine,
       {{"MEAN", Quantity::Reading, 26000},
        {"AMPLITUDE", Quantity::Reading, 1000},
        {"SECONDS", Quantity::Seconds, 8}}},
      {"step",
       SignalKind::Step,
       {{"FIRST", Quantity::Reading, 26000},
        {"SECOND", Quantity::Reading, 24000},
        {"SECONDS", Quantity::Seconds, 5}}},
  };
  return rows;
}

SignalSpecResult failure(std::string text) {
  return {{}, std::move(text)};
}

std::string outOfRange(const Parameter& parameter, std::string_view text) {
  const std::string range =
      parameter.quantity == Quantity::Reading ? "0 to 65535" : "0.04 to 86400";
  return std::string(parameter.name) + " must be a number, " + range + ", not \"" +
         std::string(text) + "\"";
}

bool inRange(const Parameter& parameter, double value) {
  if (parameter.quantity == Quantity::Reading) {
    return value >= kLowestReading && value <= kHighestReading;
  }
  return value >= 2 * kFrameSeconds && value <= 86400;
}

SignalSpecResult parseNumbers(const KindRow& row, const std::vector<std::string_view>& pieces) {
  if (pieces.size() - 1 > row.parameters.size()) {
    return failure("signal \"" + std::string(row.name) + "\" takes " +
                   std::to_string(row.parameters.size()) + " numbers at most");
  }
  SignalSpecResult result{{row.kind, {}, {}}, {}};
  for (std::size_t i = 0; i < row.parameters.size(); ++i) {
    const Parameter& parameter = row.parameters[i];
    double value = parameter.value;
    if (i + 1 < pieces.size()) {
      const auto number = toNumber(pieces[i + 1]);
      if (!number || !inRange(parameter, *number)) {
        return failure(outOfRange(parameter, pieces[i + 1]));
      }
      value = *number;
    }
    result.spec.numbers.push_back(value);
  }
  return result;
}

SignalResult makeListSignal(const std::string& path, AtEnd atEnd) {
  std::ifstream file(path, std::ios::binary);
  if (!file.is_open()) return {nullptr, "cannot read " + path};
  std::ostringstream text;
  text << file.rdbuf();
  ReadingsResult list = parseReadings(text.str());
  if (!list.error.empty()) return {nullptr, path + ": " + list.error};
  return {std::make_unique<ListSignal>(std::move(list.readings), atEnd), {}};
}

}  // namespace

SignalSpecResult parseSignalSpec(std::string_view text) {
  constexpr std::string_view kList = "csv:";
  if (text.starts_with(kList)) {
    if (text.size() == kList.size()) return failure("csv: needs the name of a file");
    return {{SignalKind::List, {}, std::string(text.substr(kList.size()))}, {}};
  }
  const std::vector<std::string_view> pieces = split(text, ':');
  for (const KindRow& row : kinds()) {
    if (row.name == pieces[0]) return parseNumbers(row, pieces);
  }
  return failure("no such signal \"" + std::string(text) +
                 "\" (skin, constant, ramp, sine, step or csv:FILE)");
}

ReadingsResult parseReadings(std::string_view text) {
  ReadingsResult result;
  int line = 0;
  for (const std::string_view raw : split(text, '\n')) {
    ++line;
    const std::string_view entry = trimmed(raw);
    if (entry.empty() || entry.front() == '#') continue;
    const auto value = toWhole(entry);
    if (!value || *value < kLowestReading || *value > kHighestReading) {
      return {{},
              "line " + std::to_string(line) + ": \"" + escaped(entry.substr(0, 40)) +
                  "\" is no reading (a whole number, 0 to 65535)"};
    }
    result.readings.push_back(static_cast<std::uint16_t>(*value));
  }
  if (result.readings.empty()) result.error = "no readings";
  return result;
}

SignalResult makeSignal(const SignalSpec& spec, std::uint64_t seed, AtEnd atEnd) {
  const std::vector<double>& n = spec.numbers;
  switch (spec.kind) {
    case SignalKind::Skin:
      return {std::make_unique<SkinSignal>(seed), {}};
    case SignalKind::Constant:
      return {std::make_unique<ConstantSignal>(n.at(0)), {}};
    case SignalKind::Ramp:
      return {std::make_unique<RampSignal>(n.at(0), n.at(1), n.at(2)), {}};
    case SignalKind::Sine:
      return {std::make_unique<SineSignal>(n.at(0), n.at(1), n.at(2)), {}};
    case SignalKind::Step:
      return {std::make_unique<StepSignal>(n.at(0), n.at(1), n.at(2)), {}};
    case SignalKind::List:
      return makeListSignal(spec.file, atEnd);
  }
  return {nullptr, "no such signal"};
}

}  // namespace qv3::metersim
