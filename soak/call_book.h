#ifndef SOAK_CALL_BOOK_H
#define SOAK_CALL_BOOK_H

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <utility>

#include "soak/operations.h"

namespace rolu_soak {

using SteadyTime = std::chrono::steady_clock::time_point;

// What a thread that is ready to run may have to wait for a processor, on a machine that does other
// work too. It is no part of a promise.
inline constexpr std::chrono::milliseconds kSchedulingSlack{1000};

struct DurationFigures {
  int own_ms = 0;
  std::uint64_t calls = 0;
  std::chrono::microseconds longest{0};        // with its turns
  std::chrono::microseconds longest_alone{0};  // of calls while no other ran
};

// How long each call took and how it ended. A call may take as long as it promises, and besides as long
// as the commands of others held the line: of each call that ran meanwhile, what it promises at most, or
// what it took. Any thread may call any member.
class CallBook {
 public:
  // `lane` is the thread's own place.
  void Begin(std::size_t lane, const Operation& operation);
  struct Duration {
    std::chrono::microseconds took{0};
    std::string excess;  // in words; empty when the promise is kept
  };
  Duration End(std::size_t lane, ROLU_STATUS status, bool alone);

  // The names of the calls that have not returned, with their ages.
  std::string Unfinished() const;

  using Endings = std::map<std::pair<std::size_t, ROLU_STATUS>, std::uint64_t>;  // by family and status
  Endings endings() const;
  std::map<std::string, DurationFigures> durations() const;  // by promise
  std::uint64_t calls() const;

 private:
  struct Running {
    const Operation* operation = nullptr;
    SteadyTime start{};
  };
  struct Ended {
    SteadyTime start{};
    SteadyTime end{};
    std::chrono::milliseconds promised{0};
  };
  static constexpr std::size_t kRemembered = 8192;

  // With mutex_ held.
  std::chrono::microseconds TimeOfOthers(std::size_t lane, SteadyTime start, SteadyTime end) const;

  mutable std::mutex mutex_;
  std::array<Running, kLanes> running_{};
  std::array<Ended, kRemembered> ended_{};
  std::size_t next_ended_ = 0;
  std::uint64_t calls_ = 0;
  Endings endings_;
  std::map<std::string, DurationFigures> durations_;
};

}  // namespace rolu_soak

#endif  // SOAK_CALL_BOOK_H
