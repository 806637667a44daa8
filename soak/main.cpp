#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <map>
#include <random>
#include <string>

#include "simulator/preloaded.h"
#include "soak/report.h"
#include "soak/soak.h"

namespace {

constexpr int kViolated = 1;
constexpr int kMisused = 2;

struct CommandLine {
  rolu_soak::SoakOptions soak;
  bool list = false;
};

// Nothing when the command line asks for help, or is wrong: `exit_status` says which.
bool Parse(int argc, char** argv, CommandLine& parsed, int& exit_status) {
  CLI::App app{
      "Calls the MCU families of the library from eight threads, on a simulated board that answers late, "
      "wrongly\n"
      "or not at all, and checks each answer, each call's time and what the process holds.\n"
      "Exit status: 0 all held, 1 something was violated, 2 wrong use."};
  app.name("rolu-soak");
  double seconds = 60;
  parsed.soak.seed = std::random_device()();
  const std::map<std::string, double> units = {{"s", 1}, {"m", 60}, {"min", 60}, {"h", 3600}};
  app.add_option("--time", seconds, "How long: 90s (the default is 60s), 30m, 8h")
      ->transform(CLI::AsNumberWithUnit(units, CLI::AsNumberWithUnit::CASE_SENSITIVE, "TIME"))
      ->check(CLI::Range(1.0, 7 * 24 * 3600.0))
      ->option_text("TIME");
  app.add_option(
         "--seed", parsed.soak.seed,
         "Of all that is drawn; without it each run has its own. How the threads interleave remains chance")
      ->option_text("N");
  app.add_flag("--promises", parsed.list, "Only lists the calls with what they promise");
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    exit_status = app.exit(error) == 0 ? 0 : kMisused;
    return false;
  }
  parsed.soak.time = std::chrono::milliseconds(static_cast<long long>(seconds * 1000));
  parsed.soak.show_progress = isatty(STDERR_FILENO) == 1;
  return true;
}

// The library's VPM start-up prints a line each time.
class QuietOutput {
 public:
  QuietOutput() : output_(fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 3)) {
    std::fflush(stdout);
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    dup2(nowhere, STDOUT_FILENO);
    close(nowhere);
  }
  ~QuietOutput() {
    std::fflush(stdout);
    dup2(output_, STDOUT_FILENO);
    close(output_);
  }
  QuietOutput(const QuietOutput&) = delete;
  QuietOutput& operator=(const QuietOutput&) = delete;

 private:
  int output_;
};

int Run(const rolu_soak::SoakOptions& options) {
  fmt::print(stderr, "rolu-soak: seed {}\n", options.seed);
  rolu_soak::InstallSignalHandler();
  rolu_soak::Soak soak(options);
  bool all_returned = false;
  {
    const QuietOutput quiet;
    all_returned = soak.Run();
  }
  if (options.show_progress) fmt::print(stderr, "\n");
  fmt::print("{}", rolu_soak::Report(soak));
  std::fflush(stdout);
  // A thread that is inside a call cannot be joined.
  if (!all_returned) _exit(kViolated);
  return soak.violations().count() == 0 ? 0 : kViolated;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    CommandLine command_line;
    int exit_status = 0;
    if (!Parse(argc, argv, command_line, exit_status)) return exit_status;
    if (command_line.list) {
      fmt::print("{}", rolu_soak::ListOfPromises());
      return 0;
    }
    if (!rolu_sim::IsPreloaded()) rolu_soak::CountHeapExactly();
    rolu_sim::EnsurePreloaded(argc, argv);
    return Run(command_line.soak);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "rolu-soak: %s\n", error.what());
    return kViolated;
  }
}
