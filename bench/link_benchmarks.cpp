#include "bench/link_benchmarks.h"

#include <benchmark/benchmark.h>
#include <sys/prctl.h>
#include <sys/select.h>

#include <exception>
#include <memory>

#include "bench/allocation_counter.h"
#include "bench/loaded_size.h"
#include "bench/mcu_process.h"
#include "bench/quiet_line.h"
#include "bench/require.h"
#include "bench/serial_client.h"
#include "include/kavo_rolu.h"

namespace rolu_bench {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::microseconds;
using std::chrono::milliseconds;

void OpenLink() {
  Require(KAVO_ROLU_WD_Initialize(0) == ROLU_STATUS_SUCCESS, "Initialize failed");
}

void CloseLink() {
  Require(KAVO_ROLU_WD_Deinitialize() == ROLU_STATUS_SUCCESS, "Deinitialize failed");
}

// The watchdog family as the link's only user.
class OnlyUser {
 public:
  OnlyUser() { OpenLink(); }
  ~OnlyUser() { KAVO_ROLU_WD_Deinitialize(); }
  OnlyUser(const OnlyUser&) = delete;
  OnlyUser& operator=(const OnlyUser&) = delete;
};

void QueryLibrary() {
  unsigned short time = 0;
  Require(KAVO_ROLU_WD_GetTime(&time) == ROLU_STATUS_SUCCESS && time == kWatchdogTime, "a query failed");
}

void LeaveNextLineQuiet() {
  static int turn = 0;
  LeaveLineQuiet(++turn);
}

void LeaveNoPause() {}

// Few, so that bare round trips and queries take turns more often than the machine's load changes.
constexpr int kSamplesPerRound = 10;

// The time of `work` in microseconds.
template <typename Work>
double TimeOf(Work work) {
  const Clock::time_point start = Clock::now();
  work();
  return std::chrono::duration<double, std::micro>(Clock::now() - start).count();
}

template <typename Pause, typename Work>
void Sample(Samples& samples, int count, Pause pause, Work work) {
  for (int i = 0; i < count; ++i) {
    pause();
    samples.Add(TimeOf(work));
  }
}

// With the timer slack set as in the library's thread, see SampleEmptyPolls.
void SelectFor5Ms() {
  timeval timeout{0, 5000};
  select(0, nullptr, nullptr, nullptr, &timeout);
}

void SampleEmptyPolls(Samples& samples, int count) {
  const int slack_ns = prctl(PR_GET_TIMERSLACK);
  prctl(PR_SET_TIMERSLACK, 1UL);
  Sample(samples, count, LeaveNoPause, SelectFor5Ms);
  prctl(PR_SET_TIMERSLACK, static_cast<unsigned long>(slack_ns));
}

void ShowMedian(benchmark::State& state, const char* name, const Samples& samples) {
  state.counters[name] = samples.Percentile(50).value_or(0.0);
}

class LinkBenchmarks {
 public:
  LinkBenchmarks(const Effort& effort, const rolu_sim::BoardRoot& root, Measurements& found)
      : effort_(effort), root_(root), found_(found) {
    mcu_.PlugInto(root_);
  }

  // One round is an iteration.
  void QueryLatency(benchmark::State& state) {
    for ([[maybe_unused]] auto round : state) {
      SampleBareRoundTrips();
      SampleQueries();
      SampleEmptyPolls(found_.empty_poll, kSamplesPerRound / 2);
    }
    ShowMedian(state, "bare_us", found_.bare_round_trip);
    ShowMedian(state, "quiet_us", found_.query_on_quiet_line);
    ShowMedian(state, "busy_us", found_.query_back_to_back);
  }

  void LastClose(benchmark::State& state) {
    for ([[maybe_unused]] auto iteration : state) {
      OpenLink();
      LeaveNextLineQuiet();
      const double time_us = TimeOf(CloseLink);
      state.SetIterationTime(time_us / 1e6);
      found_.last_close.Add(time_us);
    }
  }

  void AllocationsPerQuery(benchmark::State& state) {
    found_.allocations_per_query = CountAllocations(state, QueryLibrary);
  }

  // Received lines other than answers: each trigger brings kMessagesBeforeTriggerAnswer of them before its
  // answer.
  void AllocationsPerLine(benchmark::State& state) {
    const auto trigger = [] { Require(KAVO_ROLU_WD_Trigger() == ROLU_STATUS_SUCCESS, "a trigger failed"); };
    found_.allocations_per_line = CountAllocations(state, trigger) / (kMessagesBeforeTriggerAnswer + 1);
  }

  void IdleLink(benchmark::State& state) {
    const OnlyUser user;
    found_.idle_link = LoadOf(state);
    QueryLibrary();
  }

  void Loaded(benchmark::State& state) {
    for ([[maybe_unused]] auto iteration : state) {
      found_.loaded = LoadedSizeOf(reinterpret_cast<const void*>(KAVO_ROLU_WD_GetTime));
    }
    state.counters["bytes"] = static_cast<double>(found_.loaded->with_needed_bytes);
  }

  void HungUpPort(benchmark::State& state) {
    McuProcess dying_mcu;
    dying_mcu.PlugInto(root_);
    const OnlyUser user;
    mcu_.PlugInto(root_);
    Require(dying_mcu.HangUp(), "the port is still there after its end");
    found_.hung_up_port = LoadOf(state);
  }

 private:
  void SampleBareRoundTrips() {
    const SerialClient client(mcu_.device_path());
    const auto ask = [&] { Require(client.AskWatchdogTime(), "the MCU did not answer"); };
    Sample(found_.bare_round_trip, kSamplesPerRound, LeaveNextLineQuiet, ask);
    Sample(found_.bare_round_trip_back_to_back, kSamplesPerRound, LeaveNoPause, ask);
  }

  void SampleQueries() {
    const OnlyUser user;
    Sample(found_.query_on_quiet_line, kSamplesPerRound, LeaveNextLineQuiet, QueryLibrary);
    Sample(found_.query_back_to_back, kSamplesPerRound, LeaveNoPause, QueryLibrary);
  }

  double CountAllocations(benchmark::State& state, void (*work)()) const {
    const std::uint64_t before_open = AllocationCount();
    const OnlyUser user;
    Require(AllocationCount() > before_open, "the counter did not see what Initialize allocates");
    work();
    const std::uint64_t before = AllocationCount();
    std::uint64_t after = before;
    for ([[maybe_unused]] auto iteration : state) {
      for (int i = 0; i < effort_.counted_queries; ++i) work();
      after = AllocationCount();
    }
    state.counters["allocations"] = static_cast<double>(after - before);
    return static_cast<double>(after - before) / effort_.counted_queries;
  }

  IoThreadLoad LoadOf(benchmark::State& state) const {
    LeaveNextLineQuiet();
    IoThreadLoad load;
    for ([[maybe_unused]] auto iteration : state) load = MeasureIoThreadLoad(effort_.load_duration);
    state.counters["wakeups/s"] = load.wakeups_per_second;
    state.counters["cpu%"] = load.processor_percent;
    return load;
  }

  const Effort effort_;
  const rolu_sim::BoardRoot& root_;
  const McuProcess mcu_;
  Measurements& found_;
};

}  // namespace

void RegisterLinkBenchmarks(const Effort& effort, const rolu_sim::BoardRoot& root, Measurements& found) {
  using Method = void (LinkBenchmarks::*)(benchmark::State&);
  const auto benchmarks = std::make_shared<LinkBenchmarks>(effort, root, found);
  const auto add = [&](const char* name, Method method, int iterations) {
    const auto run = [=, &found](benchmark::State& state) {
      found.attempted = true;
      try {
        (benchmarks.get()->*method)(state);
      } catch (const std::exception& error) {
        found.failed = true;
        state.SkipWithError(error.what());
      }
    };
    return benchmark::RegisterBenchmark(name, run)->Iterations(iterations)->Unit(benchmark::kMillisecond);
  };
  add("QueryLatency", &LinkBenchmarks::QueryLatency, effort.rounds);
  add("Allocations/PerQuery", &LinkBenchmarks::AllocationsPerQuery, 1);
  add("Allocations/PerLine", &LinkBenchmarks::AllocationsPerLine, 1);
  add("IoThread/IdleLink", &LinkBenchmarks::IdleLink, 1);
  add("IoThread/HungUpPort", &LinkBenchmarks::HungUpPort, 1);
  add("Loaded", &LinkBenchmarks::Loaded, 1);
  add("LastClose", &LinkBenchmarks::LastClose, effort.closes)->UseManualTime();
}

}  // namespace rolu_bench
