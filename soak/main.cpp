#include <fmt/format.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <random>
#include <string>

#include "cli/command_line.h"
#include "cli/exit_status.h"
#include "cli/messages.h"
#include "cli/silenced_output.h"
#include "simulator/preloaded.h"
#include "soak/report.h"
#include "soak/soak.h"

namespace {

constexpr int kViolated = rolu::kPartlyDone;

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
  parsed.soak.seed = std::random_device()();
  rolu::AddDurationOption(app, "--time", parsed.soak.time, "How long, like 90s, 30m or 8h; 60s without it",
                          std::chrono::seconds(1), std::chrono::hours(7 * 24));
  app.add_option(
         "--seed", parsed.soak.seed,
         "Seed of all random choices; without it each run has its own. The order of the threads stays random")
      ->option_text("N");
  app.add_flag("--promises", parsed.list, "Only lists the calls with what they promise");
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    exit_status = rolu::Conclude(app, error);
    return false;
  }
  parsed.soak.show_progress = isatty(STDERR_FILENO) == 1;
  return true;
}

int Run(const rolu_soak::SoakOptions& options) {
  rolu::Say(fmt::format("seed {}", options.seed));
  rolu_soak::InstallSignalHandler();
  rolu_soak::Soak soak(options);
  bool all_returned = false;
  {
    const rolu::SilencedOutput silenced;
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
    rolu::SayProblem(error.what());
    return kViolated;
  }
}
