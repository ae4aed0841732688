#include <iostream>
#include <string>
#include <vector>

#include "tools/metersim/core/help.h"
#include "tools/metersim/core/options.h"
#include "tools/metersim/core/signalspec.h"
#include "tools/metersim/core/simulator.h"
#include "tools/metersim/mainloop.h"

namespace {

constexpr int kWrongOptions = 2;

int wrongOptions(const std::string& error) {
  std::cerr << "meter-sim: " << error << "\nmeter-sim --help tells more.\n";
  return kWrongOptions;
}

}  // namespace

int main(int count, char** arguments) {
  using namespace qv3::metersim;
  const OptionsResult parsed =
      parseOptions(std::vector<std::string>(arguments + 1, arguments + count));
  if (!parsed.error.empty()) return wrongOptions(parsed.error);
  const Options& options = parsed.options;
  if (options.help) {
    std::cout << helpText();
    return 0;
  }
  SignalResult made = makeSignal(options.signal, options.simulator.seed, options.simulator.atEnd);
  if (!made.signal) return wrongOptions("--signal: " + made.error);

  Simulator simulator(options.simulator, std::move(made.signal));
  MainLoop loop(options, simulator);
  const std::string error = loop.open();
  if (!error.empty()) {
    std::cerr << "meter-sim: " << error << "\n";
    return 1;
  }
  return loop.run();
}
