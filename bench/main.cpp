#include <benchmark/benchmark.h>
#include <stdlib.h>

#include <cstdio>
#include <cstring>
#include <exception>

#include "bench/link_benchmarks.h"
#include "bench/report.h"
#include "simulator/preloaded.h"

namespace {

void PrintHelp() {
  std::printf(
      "usage: rolu-bench [--quick] [--benchmark_filter=REGEX] [--benchmark_...]\n\n"
      "Measures the library against an MCU that answers at once, and judges the figures by their limits.\n"
      "It takes about 20 s, with --quick a few. --benchmark_list_tests lists what is measured; a limit\n"
      "whose figures a filter leaves out is not judged.\n\n"
      "Exit status: 0 all judged limits are kept, 1 one is over or could not be measured, 2 wrong use.\n");
}

// Takes "--quick" out of the arguments.
bool TakeQuick(int& argc, char** argv) {
  int kept = 1;
  for (int i = 1; i < argc; ++i) {
    if (std::strcmp(argv[i], "--quick") != 0) argv[kept++] = argv[i];
  }
  const bool found = kept < argc;
  argc = kept;
  argv[argc] = nullptr;
  return found;
}

int Run(bool quick) {
  const rolu_sim::BoardRoot root;
  setenv(rolu_sim::kRootVariable, root.path().c_str(), 1);
  rolu_bench::Measurements found;
  rolu_bench::RegisterLinkBenchmarks(quick ? rolu_bench::kQuickEffort : rolu_bench::kFullEffort, root, found);
  const bool any_matched = benchmark::RunSpecifiedBenchmarks() > 0;
  benchmark::ClearRegisteredBenchmarks();
  if (!any_matched) return 2;
  if (!found.attempted) return 0;  // only listed
  const bool all_kept = rolu_bench::PrintReport(found) == rolu_bench::Verdict::kAllKept;
  return all_kept && !found.failed ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  rolu_sim::EnsurePreloaded(argc, argv);
  const bool quick = TakeQuick(argc, argv);
  benchmark::Initialize(&argc, argv, PrintHelp);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
  try {
    return Run(quick);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "rolu-bench: %s\n", error.what());
    return 1;
  }
}
