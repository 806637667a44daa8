#include "bench/peers/comparison.h"

#include <cstdint>
#include <filesystem>
#include <thread>

#include "bench/allocation_counter.h"
#include "bench/quiet_line.h"
#include "bench/thread_counters.h"

namespace rolu_bench {
namespace {

double Microseconds(clockid_t clock) {
  return 1e6 * Seconds(clock);
}

// The wake-ups of the threads that a peer runs besides the asking one.
std::uint64_t WakeupsOfOtherThreads() {
  std::uint64_t sum = 0;
  for (const std::filesystem::path& thread : OtherThreads()) sum += VoluntarySwitches(thread);
  return sum;
}

template <typename Work>
double ProcessorTimeOf(Work work) {
  const double before = Microseconds(CLOCK_PROCESS_CPUTIME_ID);
  work();
  return Microseconds(CLOCK_PROCESS_CPUTIME_ID) - before;
}

void AskOnQuietLine(Peer& peer, int count, PeerFigures& figures) {
  const double pauses = ProcessorTimeOf([count] {
    for (int turn = 0; turn < count; ++turn) LeaveLineQuiet(turn);
  });
  const double pauses_and_asks = ProcessorTimeOf([&] {
    for (int turn = 0; turn < count; ++turn) {
      LeaveLineQuiet(turn);
      const double start = Microseconds(CLOCK_MONOTONIC);
      peer.Ask();
      figures.quiet_us.Add(Microseconds(CLOCK_MONOTONIC) - start);
    }
    LeaveLineQuiet(0);
  });
  figures.quiet_processor_us.Add((pauses_and_asks - pauses) / count);
}

void AskInABurst(Peer& peer, int count, PeerFigures& figures) {
  const double first = Seconds(CLOCK_MONOTONIC);
  const double processor = ProcessorTimeOf([&] {
    for (int i = 0; i < count; ++i) {
      const double start = Microseconds(CLOCK_MONOTONIC);
      peer.Ask();
      figures.burst_us_per_ask.Add(Microseconds(CLOCK_MONOTONIC) - start);
    }
  });
  figures.burst_seconds += Seconds(CLOCK_MONOTONIC) - first;
  figures.burst_processor_us.Add(processor / count);
}

double AllocationsPerAsk(Peer& peer, int count) {
  const std::uint64_t before = AllocationCount();
  for (int i = 0; i < count; ++i) peer.Ask();
  return static_cast<double>(AllocationCount() - before) / count;
}

double IdleWakeupsPerSecond(std::chrono::milliseconds duration) {
  const std::uint64_t before = WakeupsOfOtherThreads();
  const double start = Seconds(CLOCK_MONOTONIC);
  std::this_thread::sleep_for(duration);
  const double seconds = Seconds(CLOCK_MONOTONIC) - start;
  return static_cast<double>(WakeupsOfOtherThreads() - before) / seconds;
}

}  // namespace

std::vector<PeerFigures> Compare(const ComparisonEffort& effort, const McuProcess& mcu,
                                 const std::function<void(int done, int all)>& tell_progress) {
  const std::vector<PeerKind>& kinds = PeerKinds();
  std::vector<PeerFigures> found(kinds.size());
  for (int round = 0; round < effort.rounds; ++round) {
    tell_progress(round, effort.rounds);
    for (std::size_t i = 0; i < kinds.size(); ++i) {
      const std::unique_ptr<Peer> peer = kinds[i].open(mcu.device_path());
      peer->Ask();
      AskOnQuietLine(*peer, effort.quiet_asks_per_round, found[i]);
      AskInABurst(*peer, effort.asks_per_burst, found[i]);
    }
  }
  for (std::size_t i = 0; i < kinds.size(); ++i) {
    const std::unique_ptr<Peer> peer = kinds[i].open(mcu.device_path());
    peer->Ask();
    found[i].name = kinds[i].name;
    found[i].loaded = LoadedSizeOf(kinds[i].function_inside);
    found[i].allocations_per_ask = AllocationsPerAsk(*peer, effort.asks_per_burst);
    LeaveLineQuiet(0);
    found[i].idle_wakeups_per_second = IdleWakeupsPerSecond(effort.idle_duration);
  }
  tell_progress(effort.rounds, effort.rounds);
  return found;
}

}  // namespace rolu_bench
