#include <fmt/format.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <random>

#include "cli/command_line.h"
#include "cli/exit_status.h"
#include "cli/messages.h"
#include "cli/silenced_output.h"
#include "simulator/preloaded.h"
#include "soak/soak.h"

namespace {

constexpr int kViolated = rolu::kPartlyDone;

int Run(const rolu_soak::SoakOptions& options) {
  rolu::Say(fmt::format("seed {}", options.seed));
  rolu_soak::Soak soak(options);
  bool all_returned = false;
  {
    const rolu::SilencedOutput silenced;
    all_returned = soak.Run();
  }
  if (options.show_progress) fmt::print(stderr, "\n");
  fmt::print("{}", soak.Report());
  std::fflush(stdout);
  // A thread that is inside a call cannot be joined.
  if (!all_returned) _exit(kViolated);
  return soak.found_nothing() ? 0 : kViolated;
}

int ParseAndRun(int argc, char** argv) {
  CLI::App app{
      "Calls the MCU families of the library from eight threads, on a simulated board that answers late, "
      "wrongly\n"
      "or not at all, and checks each answer, each call's time and what the process holds.\n"
      "Exit status: 0 all held, 1 something was violated, 2 wrong use."};
  app.name("rolu-soak");
  rolu_soak::SoakOptions options{.seed = std::random_device()(), .show_progress = isatty(STDERR_FILENO) == 1};
  rolu::AddDurationOption(app, "--time", options.time, "How long, like 90s, 30m or 8h; 60s without it",
                          std::chrono::seconds(1), std::chrono::hours(7 * 24));
  app.add_option(
         "--seed", options.seed,
         "Seed of all random choices; without it each run has its own. The order of the threads stays random")
      ->option_text("N");
  bool lists = false;
  app.add_flag("--promises", lists, "Only lists the calls with what they promise");
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return rolu::Conclude(app, error);
  }
  if (lists) {
    fmt::print("{}", rolu_soak::ListOfPromises());
    return 0;
  }
  if (!rolu_sim::IsPreloaded()) rolu_soak::CountHeapExactly();
  rolu_sim::EnsurePreloaded(argc, argv);
  return Run(options);
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return ParseAndRun(argc, argv);
  } catch (const std::exception& error) {
    rolu::SayProblem(error.what());
    return kViolated;
  }
}
