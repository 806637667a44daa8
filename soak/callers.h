#pragma once

#include <pthread.h>

#include <array>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <thread>
#include <vector>

#include "soak/answering_mcu.h"
#include "soak/call_book.h"
#include "soak/operations.h"
#include "soak/process_usage.h"

namespace rolu_soak {

// Lets at most `limit` threads in at the same time; a thread that is inside has locked it. Closing it keeps
// new threads out, however many come, and waits for those inside.
class Gate {
 public:
  static constexpr int kAll = 1000;

  void lock() {
    std::unique_lock<std::mutex> lock(mutex_);
    changed_.wait(lock, [this] { return inside_ < limit_; });
    ++inside_;
  }
  void unlock() {
    const std::lock_guard<std::mutex> lock(mutex_);
    --inside_;
    changed_.notify_all();
  }
  void Open(int limit = kAll) {
    const std::lock_guard<std::mutex> lock(mutex_);
    limit_ = limit;
    changed_.notify_all();
  }
  // Waits until nobody is inside; false when that takes longer than `patience`.
  bool Close(std::chrono::seconds patience) {
    std::unique_lock<std::mutex> lock(mutex_);
    limit_ = 0;
    return changed_.wait_for(lock, patience, [this] { return inside_ == 0; });
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  int limit_ = kAll;
  int inside_ = 0;
};

// The application: a thread for each lane, which calls what belongs to its lane and switches the family
// that it leads off and on. Each call is judged by what became of its commands at the MCU.
class Callers {
 public:
  // `excuses` gets the calls whose faults are explained by a thread's wait for a processor.
  Callers(std::uint32_t seed, AnsweringMcu& mcu, CallBook& book, Findings& violations, Findings& excuses);
  ~Callers();
  Callers(const Callers&) = delete;
  Callers& operator=(const Callers&) = delete;

  // Lets the callers work, which rest at the start. At most `at_once` calls run at the same time.
  void Work(int at_once = Gate::kAll) { gate_.Open(at_once); }
  // False when a call does not return; that is reported as a violation.
  bool Rest();

  // Only the thread that let the callers rest, or told families to stay, may call the public members below.
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

  void Run(std::size_t lane, std::uint32_t seed);
  void CallAny(Dice& dice, const std::vector<const Operation*>& operations);
  void TurnOffAndOn(Dice& dice, std::size_t family);
  bool Empty(Gate& gate);
  void Report(const Operation& operation, const std::vector<Fault>& faults, const ProcessorWaits& before);

  AnsweringMcu& mcu_;
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
