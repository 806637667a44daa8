#include "bench/link_benchmarks.h"

#include <benchmark/benchmark.h>
#include <sys/select.h>

#include <exception>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>

#include "bench/allocation_counter.h"
#include "bench/mcu_process.h"
#include "bench/serial_client.h"
#include "include/kavo_rolu.h"

namespace rolu_bench {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::microseconds;
using std::chrono::milliseconds;

class Unmeasurable : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

void Require(bool condition, const char* what) {
  if (!condition) throw Unmeasurable(what);
}

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

// More than 10 ms, each time another phase of the 5 ms poll.
void LeaveLineQuiet() {
  static int turn = 0;
  turn = (turn + 1) % 8;
  std::this_thread::sleep_for(milliseconds(11) + turn * microseconds(700));
}

void LeaveNoPause() {}

template <typename Pause, typename Work>
void Sample(benchmark::State& state, Samples& samples, Pause pause, Work work) {
  for ([[maybe_unused]] auto iteration : state) {
    pause();
    const Clock::time_point start = Clock::now();
    work();
    const std::chrono::duration<double> elapsed = Clock::now() - start;
    state.SetIterationTime(elapsed.count());
    samples.Add(elapsed.count() * 1e6);
  }
}

class LinkBenchmarks {
 public:
  LinkBenchmarks(const Effort& effort, const rolu_sim::BoardRoot& root, Measurements& found)
      : effort_(effort), root_(root), found_(found) {
    mcu_.PlugInto(root_);
  }

  void BareRoundTrip(benchmark::State& state) {
    const SerialClient client(mcu_.device_path());
    Sample(state, found_.bare_round_trip, LeaveLineQuiet,
           [&] { Require(client.AskWatchdogTime(), "the MCU did not answer"); });
  }

  void BareRoundTripBackToBack(benchmark::State& state) {
    const SerialClient client(mcu_.device_path());
    Sample(state, found_.bare_round_trip_back_to_back, LeaveNoPause,
           [&] { Require(client.AskWatchdogTime(), "the MCU did not answer"); });
  }

  void EmptyPoll(benchmark::State& state) {
    Sample(state, found_.empty_poll, LeaveNoPause, [] {
      timeval timeout{0, 5000};
      select(0, nullptr, nullptr, nullptr, &timeout);
    });
  }

  void QueryOnQuietLine(benchmark::State& state) {
    const OnlyUser user;
    Sample(state, found_.query_on_quiet_line, LeaveLineQuiet, QueryLibrary);
  }

  void QueryBackToBack(benchmark::State& state) {
    const OnlyUser user;
    QueryLibrary();
    Sample(state, found_.query_back_to_back, LeaveNoPause, QueryLibrary);
  }

  void LastClose(benchmark::State& state) {
    const auto open = [] {
      OpenLink();
      LeaveLineQuiet();
    };
    Sample(state, found_.last_close, open, CloseLink);
  }

  void AllocationsPerQuery(benchmark::State& state) {
    found_.allocations_per_query = CountAllocations(state, QueryLibrary);
  }

  // Received lines other than answers: each trigger brings that many before its answer.
  void AllocationsPerLine(benchmark::State& state) {
    const auto trigger = [] { Require(KAVO_ROLU_WD_Trigger() == ROLU_STATUS_SUCCESS, "a trigger failed"); };
    found_.allocations_per_line = CountAllocations(state, trigger) / (kMessagesBeforeTriggerAnswer + 1);
  }

  void IdleLink(benchmark::State& state) {
    const OnlyUser user;
    found_.idle_link = LoadOf(state);
    QueryLibrary();
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
    LeaveLineQuiet();
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
  const auto add = [&](const std::string& name, Method method, int iterations) {
    const auto run = [=, &found](benchmark::State& state) {
      found.attempted = true;
      try {
        (benchmarks.get()->*method)(state);
      } catch (const std::exception& error) {
        found.failed = true;
        state.SkipWithError(error.what());
      }
    };
    return benchmark::RegisterBenchmark(name.c_str(), run)->Iterations(iterations);
  };
  const auto add_timed = [&](const std::string& name, Method method, int iterations) {
    add(name, method, iterations)->UseManualTime()->Unit(benchmark::kMicrosecond);
  };
  for (int round = 1; round <= effort.rounds; ++round) {
    const std::string suffix = "/round:" + std::to_string(round);
    add_timed("QueryLatency/BareRoundTrip" + suffix, &LinkBenchmarks::BareRoundTrip, effort.quiet_samples);
    add_timed("QueryLatency/QueryOnQuietLine" + suffix, &LinkBenchmarks::QueryOnQuietLine,
              effort.quiet_samples);
    add_timed("QueryLatency/BareRoundTripBackToBack" + suffix, &LinkBenchmarks::BareRoundTripBackToBack,
              effort.busy_samples);
    add_timed("QueryLatency/QueryBackToBack" + suffix, &LinkBenchmarks::QueryBackToBack, effort.busy_samples);
    add_timed("QueryLatency/EmptyPoll" + suffix, &LinkBenchmarks::EmptyPoll, effort.busy_samples / 2);
  }
  add("Allocations/PerQuery", &LinkBenchmarks::AllocationsPerQuery, 1);
  add("Allocations/PerLine", &LinkBenchmarks::AllocationsPerLine, 1);
  add("IoThread/IdleLink", &LinkBenchmarks::IdleLink, 1);
  add("IoThread/HungUpPort", &LinkBenchmarks::HungUpPort, 1);
  add_timed("LastClose", &LinkBenchmarks::LastClose, effort.closes);
}

}  // namespace rolu_bench
