#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "simulator/board.h"
#include "soak/answering_mcu.h"
#include "soak/call_book.h"
#include "soak/callers.h"
#include "soak/disturbances.h"
#include "soak/process_usage.h"

namespace rolu_soak {

struct SoakOptions {
  std::chrono::milliseconds time{60000};
  std::uint32_t seed = 1;
  bool show_progress = false;
};

// Eight threads call the four families of one simulated board. From time to time they rest: then a call
// is driven alone to its longest time, and what the process holds is compared.
class Soak {
 public:
  explicit Soak(const SoakOptions& options);

  // False when a call does not return: then the process can only end.
  bool Run();

  bool found_nothing() const { return violations_.count() == 0; }
  std::string Report() const;

 private:
  void WorkFor(std::chrono::milliseconds time);
  bool Rest();
  bool HangUpAndReplug();
  void DriveNextToTheLimit();
  void SwitchAll(bool on);
  void ClearLogs();
  ProcessUsage ExpectHeld(const char* when, std::size_t more_descriptors, std::size_t more_threads);
  void CompareMemory();
  void ShowProgress() const;
  std::chrono::milliseconds elapsed() const;
  // Parts of the report.
  std::string Endings() const;
  std::string Durations() const;
  std::string Faults() const;
  std::string Held() const;
  std::string Verdict() const;

  const SoakOptions options_;
  const SteadyTime start_;
  Findings violations_;
  Findings excuses_;
  CallBook book_;
  AnsweringMcu mcu_;
  rolu_sim::Board board_;
  Callers callers_;
  Disturbances disturbances_;
  ProcessUsage before_;
  // While all families are down, after the first rest's and the last rest's work.
  std::optional<ProcessUsage> first_usage_;
  ProcessUsage last_usage_;
  std::size_t driven_ = 0;
  std::uint64_t hang_ups_ = 0;
};

}  // namespace rolu_soak
