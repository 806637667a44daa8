#ifndef SOAK_CALLERS_H
#define SOAK_CALLERS_H

#include <pthread.h>

#include <array>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <thread>
#include <vector>

#include "soak/answering_mcu.h"
#include "soak/call_book.h"
#include "soak/findings.h"
#include "soak/gate.h"
#include "soak/operations.h"
#include "soak/process_usage.h"

namespace rolu_soak {

// The application: a thread for each lane, which calls what belongs to its lane and switches the family
// that it leads off and on. Each call is judged by what became of its commands at the MCU.
class Callers {
 public:
  // `excuses` gets the calls whose faults are explained by what threads waited for a processor.
  Callers(const Lanes& lanes, CallBook& book, Findings& violations, Findings& excuses);
  ~Callers();
  Callers(const Callers&) = delete;
  Callers& operator=(const Callers&) = delete;

  // Rests at the start. `at_once` calls at most.
  void Work(int at_once = Gate::kAll) { gate_.Open(at_once); }
  // False when a call does not return, which is told.
  bool Rest();

  // The rest of the members are for the one who let the callers rest, or told families to stay.
  void FamiliesStay(bool stay) { families_stay_ = stay; }
  void PortIsDead(bool dead);
  void Call(const Operation& operation, bool alone = true);
  void BringUp(std::size_t family, bool alone = true);
  void TakeDown(std::size_t family, bool alone = true);

  std::vector<pthread_t> Threads();
  std::uint64_t openings() const { return openings_; }

 private:
  struct Family {
    Gate gate;
    std::atomic<bool> is_up{false};
  };

  void Run(std::size_t lane);
  void CallAny(Lane& lane, const std::vector<const Operation*>& operations);
  void TurnOffAndOn(std::size_t family);
  bool Empty(Gate& gate);
  void Report(const Operation& operation, const std::vector<Fault>& faults, const ProcessorWaits& before);

  const Lanes& lanes_;
  CallBook& book_;
  Findings& violations_;
  Findings& excuses_;
  std::array<Family, kFamilies> families_;
  Gate gate_;
  std::atomic<bool> ending_{false};
  std::atomic<bool> families_stay_{false};
  std::atomic<std::uint64_t> port_changes_{0};  // odd while the port is dead
  std::atomic<std::uint64_t> openings_{0};
  std::vector<std::thread> threads_;
};

}  // namespace rolu_soak

#endif  // SOAK_CALLERS_H
