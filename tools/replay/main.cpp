#include <exception>
#include <fstream>
#include <iostream>
#include <optional>
#include <string>
#include <vector>

#include "tools/replay/scriptrunner.h"

namespace {

constexpr int kUnusable = 2;

constexpr const char* kHelp =
    "Usage: meter-replay SCRIPT.jsonl [--qvd OUT]\n"
    "\n"
    "Drives the measuring core by a replay script and prints one JSON object a line for every\n"
    "receive event. The same script always prints the same lines.\n"
    "\n"
    "  --qvd OUT   write the last recording of the script, as a save would, to OUT\n"
    "  --help      this text\n"
    "\n"
    "A line that cannot be carried out ends it with the line's number and exit code 2.\n";

struct Options {
  std::string script;
  std::optional<std::string> qvd;
  bool help = false;
};

std::optional<Options> parse(const std::vector<std::string>& arguments) {
  Options options;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string& argument = arguments[i];
    if (argument == "--help") {
      options.help = true;
    } else if (argument == "--qvd" && i + 1 < arguments.size()) {
      options.qvd = arguments[++i];
    } else if (options.script.empty() && argument.rfind("--", 0) != 0) {
      options.script = argument;
    } else {
      return std::nullopt;
    }
  }
  if (options.script.empty() && !options.help) return std::nullopt;
  return options;
}

bool writeFile(const std::string& path, const std::vector<std::uint8_t>& bytes) {
  std::ofstream file(path, std::ios::binary);
  for (const std::uint8_t byte : bytes) file.put(static_cast<char>(byte));
  file.close();
  return file.good();
}

int runScript(std::istream& script, qv3::ScriptRunner& runner) {
  std::string line;
  for (int number = 1; std::getline(script, line); ++number) {
    if (line.find_first_not_of(" \t\r") == std::string::npos) continue;
    try {
      runner.run(line);
    } catch (const std::exception& error) {
      std::cout.flush();
      std::cerr << "line " << number << ": " << error.what() << '\n';
      return kUnusable;
    }
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  const auto options = parse({argv + 1, argv + argc});
  if (!options) {
    std::cerr << kHelp;
    return kUnusable;
  }
  if (options->help) {
    std::cout << kHelp;
    return 0;
  }
  std::ifstream script(options->script, std::ios::binary);
  if (!script) {
    std::cerr << "meter-replay: cannot read " << options->script << '\n';
    return kUnusable;
  }
  qv3::ScriptRunner runner([](const nlohmann::ordered_json& line) { std::cout << line << '\n'; });
  if (const int failed = runScript(script, runner); failed != 0) return failed;
  if (options->qvd && !writeFile(*options->qvd, runner.recording())) {
    std::cerr << "meter-replay: cannot write " << *options->qvd << '\n';
    return kUnusable;
  }
  return 0;
}
