// rolu-peers: the library beside the other ways to ask a device on a serial line.

#include <fmt/format.h>
#include <fmt/ostream.h>
#include <stdlib.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <fstream>

#include "bench/peers/comparison.h"
#include "simulator/preloaded.h"

namespace {

using rolu_bench::PeerFigures;

constexpr rolu_bench::ComparisonEffort kFullEffort{40, 25, 50, std::chrono::seconds(2)};
constexpr rolu_bench::ComparisonEffort kQuickEffort{4, 10, 20, std::chrono::milliseconds(500)};

struct Column {
  const char* heading;
  const char* key;  // in the file of values
  double (*value)(const PeerFigures& figures);
  int decimals;
};

const std::vector<Column>& Columns() {
  static const std::vector<Column> columns = {
      {"quiet median us", "quiet_median_us", [](const PeerFigures& f) { return *f.quiet_us.Percentile(50); },
       0},
      {"quiet p99 us", "quiet_p99_us", [](const PeerFigures& f) { return *f.quiet_us.Percentile(99); }, 0},
      {"burst median us", "burst_median_us",
       [](const PeerFigures& f) { return *f.burst_us_per_ask.Percentile(50); }, 0},
      {"burst asks/s", "burst_asks_per_s",
       [](const PeerFigures& f) { return static_cast<double>(f.burst_us_per_ask.count()) / f.burst_seconds; },
       0},
      {"quiet processor us", "quiet_processor_us",
       [](const PeerFigures& f) { return *f.quiet_processor_us.Percentile(50); }, 1},
      {"burst processor us", "burst_processor_us",
       [](const PeerFigures& f) { return *f.burst_processor_us.Percentile(50); }, 1},
      {"idle wake-ups/s", "idle_wakeups_per_s",
       [](const PeerFigures& f) { return f.idle_wakeups_per_second; }, 0},
      {"allocations/ask", "allocations_per_ask", [](const PeerFigures& f) { return f.allocations_per_ask; },
       2},
      {"loaded KiB", "loaded_kib",
       [](const PeerFigures& f) { return static_cast<double>(f.loaded.own_bytes) / 1024; }, 0},
      {"with needed KiB", "with_needed_kib",
       [](const PeerFigures& f) { return static_cast<double>(f.loaded.with_needed_bytes) / 1024; }, 0},
  };
  return columns;
}

void PrintTable(const std::vector<PeerFigures>& found) {
  fmt::print("\n{:<15}", "");
  for (const Column& column : Columns()) fmt::print("{:>20}", column.heading);
  for (const PeerFigures& figures : found) {
    fmt::print("\n{:<15}", figures.name);
    for (const Column& column : Columns()) fmt::print("{:>20.{}f}", column.value(figures), column.decimals);
  }
  fmt::print(
      "\n\n{} questions on a line left alone for more than 10 ms, {} one right after the other; the peers "
      "took\n"
      "turns on one pseudo-terminal, whose MCU answers at once.\n",
      found.front().quiet_us.count(), found.front().burst_us_per_ask.count());
}

void WriteValues(const std::vector<PeerFigures>& found, const std::string& path) {
  std::ofstream file(path);
  file << "peer";
  for (const Column& column : Columns()) file << ',' << column.key;
  for (const PeerFigures& figures : found) {
    file << '\n' << figures.name;
    for (const Column& column : Columns())
      fmt::print(file, ",{:.{}f}", column.value(figures), column.decimals);
  }
  file << '\n';
  if (!file.flush()) throw std::runtime_error("the values cannot be written to " + path);
}

void TellProgress(int done, int all) {
  if (isatty(STDERR_FILENO) == 0) return;
  fmt::print(stderr, "\rround {} of {}{}", done, all, done == all ? "\n" : "");
}

void Run(bool quick, const std::string& values_path) {
  const rolu_sim::BoardRoot root;
  setenv(rolu_sim::kRootVariable, root.path().c_str(), 1);
  const rolu_bench::McuProcess mcu;
  mcu.PlugInto(root);
  const std::vector<PeerFigures> found =
      rolu_bench::Compare(quick ? kQuickEffort : kFullEffort, mcu, TellProgress);
  PrintTable(found);
  if (!values_path.empty()) WriteValues(found, values_path);
}

int Execute(int argc, char** argv) {
  bool quick = false;
  std::string values_path;
  CLI::App app("Measures the library beside the other ways to ask a device on a serial line.", "rolu-peers");
  app.add_flag("--quick", quick, "A few seconds; the figures are rougher");
  app.add_option("--values", values_path, "Write the figures to a file of comma-separated values as well");
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& stop) {
    return app.exit(stop) == 0 ? 0 : 2;
  }
  Run(quick, values_path);
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  rolu_sim::EnsurePreloaded(argc, argv);
  try {
    return Execute(argc, argv);
  } catch (const std::exception& problem) {
    std::fprintf(stderr, "rolu-peers: %s\n", problem.what());
    return 1;
  }
}
