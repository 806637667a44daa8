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
#include <vector>

#include "include/kavo_rolu.h"
#include "soak/findings.h"
#include "soak/operations.h"

namespace rolu_soak {

using SteadyTime = std::chrono::steady_clock::time_point;

// What a call may take beyond its promise without a reason: alone a wait of 3000 ms was seen to end after
// 3000.2 ms. A longer wait for a processor is a reason, which is counted.
inline constexpr std::chrono::milliseconds kSlackAlone{100};
// Beside others it shares the processors with them. With compilers beside on two processors five of 11000
// calls took more than 100 ms too long, each while a thread waited for a processor (device files 393 ms, a
// command 724 ms more than it promises): too many to tell one that matters.
inline constexpr std::chrono::milliseconds kSlackBeside{500};

struct DurationFigures {
  int own_ms = 0;
  std::uint64_t calls = 0;
  std::uint64_t calls_alone = 0;  // while no other ran
  std::chrono::microseconds longest_alone{0};
  std::chrono::microseconds longest_less_others{0};  // of those beside others, without what these took of it
  std::chrono::microseconds longest_beside{0};       // of the same, with it
};

// How long each call took and how it ended. A call may take as long as it promises; one that takes turns
// may take besides as long as the commands of others held the line. That is no more than the time during
// which others ran, and no more than these promise. Any thread may call any member. The book has its whole
// size from the start, since what the process holds is compared.
class CallBook {
 public:
  CallBook();

  // `lane` is the thread's own place.
  void Begin(std::size_t lane, const Operation& operation);
  struct Duration {
    std::chrono::microseconds took{0};
    Fault fault;
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
  struct Ending {
    std::size_t family;
    ROLU_STATUS status;
    std::uint64_t calls;
  };
  struct Ended {
    SteadyTime start{};
    SteadyTime end{};
    std::chrono::milliseconds may_hold_line{0};
  };
  static constexpr std::size_t kRemembered = 8192;

  // With mutex_ held.
  void CountEnding(std::size_t family, ROLU_STATUS status);
  std::chrono::microseconds TimeOfOthers(std::size_t lane, SteadyTime start, SteadyTime end) const;

  mutable std::mutex mutex_;
  std::array<Running, kLanes> running_{};
  std::array<Ended, kRemembered> ended_{};
  std::size_t next_ended_ = 0;
  std::uint64_t calls_ = 0;
  std::vector<Ending> endings_;
  std::map<std::string, DurationFigures> durations_;
};

}  // namespace rolu_soak

#endif  // SOAK_CALL_BOOK_H
