#ifndef SOAK_SOAK_H
#define SOAK_SOAK_H

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>

#include "simulator/board.h"
#include "soak/answering_mcu.h"
#include "soak/call_book.h"
#include "soak/callers.h"
#include "soak/disturbances.h"
#include "soak/findings.h"
#include "soak/process_usage.h"

namespace rolu_soak {

struct SoakOptions {
  std::chrono::milliseconds time{60000};
  std::uint32_t seed = 1;
  bool show_progress = false;
};

// While all families are down the library holds nothing, and what the soak and the board hold has its whole
// size from the start: at each rest of runs of minutes the heap was the same to the byte. A leak of 64 bytes
// for each opening of a family is over this after seven of them.
inline constexpr std::size_t kHeapTolerance = 512;
// Where the allocator keeps freed pieces for each thread, these count as held.
inline constexpr std::size_t kInexactHeapTolerance = 65536;
// Pages, most of them of stacks, come into use as threads meet.
inline constexpr std::size_t kResidentTolerance = 262144;
// What an emulator has translated of the program and the library counts as theirs: it grew by 0.7 MiB in ten
// seconds.
inline constexpr std::size_t kInexactResidentTolerance = 8388608;

// Eight threads call the four families of one simulated board. From time to time they rest: then a call
// is driven alone to its longest time, and what the process holds is compared.
class Soak {
 public:
  explicit Soak(const SoakOptions& options);

  // False when a call does not return: the process can only end then.
  bool Run();

  const SoakOptions& options() const { return options_; }
  const CallBook& book() const { return book_; }
  const Findings& violations() const { return violations_; }
  const Findings& excuses() const { return excuses_; }
  const AnsweringMcu& mcu() const { return mcu_; }
  const Disturbances& disturbances() const { return disturbances_; }
  // While all families are down, after the first rest's and the last rest's work.
  const std::optional<ProcessUsage>& first_usage() const { return first_usage_; }
  const ProcessUsage& last_usage() const { return last_usage_; }
  // How much more of the heap, and of the resident memory, the last may be than the first.
  static std::size_t heap_tolerance() {
    return HeapIsCountedExactly() ? kHeapTolerance : kInexactHeapTolerance;
  }
  static std::size_t resident_tolerance() {
    return HeapIsCountedExactly() ? kResidentTolerance : kInexactResidentTolerance;
  }
  std::uint64_t hang_ups() const { return hang_ups_; }
  std::uint64_t openings() const { return callers_.openings(); }
  std::chrono::milliseconds elapsed() const;

 private:
  void WorkFor(std::chrono::milliseconds time);
  bool Rest();
  bool HangUpAndReplug();
  void DriveNextToTheLimit();
  void SwitchAll(bool on);
  void ClearLogs();
  ProcessUsage ExpectHeld(const char* when, std::size_t more_descriptors, std::size_t more_threads);
  void CompareMemory();
  void CompareExcuses();
  void ShowProgress() const;

  const SoakOptions options_;
  const SteadyTime start_;
  Findings violations_;
  Findings excuses_;
  CallBook book_;
  const Lanes lanes_;
  AnsweringMcu mcu_;
  rolu_sim::Board board_;
  Callers callers_;
  Disturbances disturbances_;
  ProcessUsage before_;
  std::optional<ProcessUsage> first_usage_;
  ProcessUsage last_usage_;
  std::size_t driven_ = 0;
  std::uint64_t hang_ups_ = 0;
};

}  // namespace rolu_soak

#endif  // SOAK_SOAK_H
