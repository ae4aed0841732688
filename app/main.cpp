#include <QApplication>
#include <QTimer>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "app/machine.h"
#include "app/version.h"

namespace {

constexpr int kBadCommandLine = 2;

/// What keeps the named session from being a file; what is in it the loader tells.
std::string whyNoSession(const std::string& path) {
  std::error_code error;
  if (path.empty() || std::filesystem::is_regular_file(path, error)) return {};
  return "\"" + path + "\" cannot be opened: " + (error ? error.message() : "it is not a file");
}

int run(const qv3::Options& options, qv3::PortTable ports) {
  qv3::Machine machine(options, std::move(ports));
  QTimer::singleShot(0, &machine.program().window(), [&] { machine.program().start(); });
  const int code = QApplication::exec();
  // A sound server that hangs is not waited for.
  if (!machine.shutDown()) std::_Exit(code);
  return code;
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> arguments(argv + 1, argv + argc);
  const auto [options, error] = qv3::parseOptions(arguments);
  qv3::PortTable ports;
  std::string problem = error;
  for (const std::string& entry : options.ports) {
    if (problem.empty()) problem = ports.name(entry);
  }
  if (problem.empty()) problem = whyNoSession(options.session);
  if (!problem.empty()) {
    qv3::say(problem + "\nTry --help.");
    return kBadCommandLine;
  }
  if (options.help || options.version) {
    const std::string text = options.help ? qv3::helpText() : "qv3 Varnel " QV3_VERSION "\n";
    std::fputs(text.c_str(), stdout);
    return 0;
  }

  const QApplication application(argc, argv);
  QApplication::setApplicationVersion(QStringLiteral(QV3_VERSION));
  qv3::prepareApplication();
  return run(options, std::move(ports));
}
