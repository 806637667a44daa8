#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory_resource>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>

#include "include/kavo_rolu.h"
#include "soak/judgement.h"
#include "soak/operations.h"

namespace rolu_soak {

using SteadyTime = std::chrono::steady_clock::time_point;

// What a call may take beyond its promise without a reason: alone a wait of 3000 ms was seen to end after
// 3000.2 ms. A longer wait for a processor is a reason, which is counted.
inline constexpr std::chrono::milliseconds kSlackAlone{100};
// A call beside others shares the processors with them. With compilers running beside on two processors, five
// of 11000 calls took more than 100 ms too long, each while a thread waited for a processor (device files 393
// ms, a command 724 ms more than it promises): too many to find one that matters.
inline constexpr std::chrono::milliseconds kSlackBeside{500};

struct DurationFigures {
  int own_ms = 0;
  std::uint64_t calls = 0;
  std::uint64_t calls_alone = 0;  // while no other ran
  std::chrono::microseconds longest_alone{0};
  std::chrono::microseconds longest_less_others{0};  // of calls beside others, without the others' time
  std::chrono::microseconds longest_beside{0};       // of the same calls, with that time
};

// How long each call took and how it ended. A call may take as long as it promises. A call that takes turns
// may also take as long as the commands of others held the line: at most the time during which others ran,
// and at most what these promise. Any thread may call any member.
class CallBook {
 public:
  // `lane` is the thread's own place. The operation outlives the book.
  void Begin(std::size_t lane, const Operation& operation);
  struct Duration {
    std::chrono::microseconds took{0};
    Fault fault;
  };
  Duration End(std::size_t lane, ROLU_STATUS status, bool alone);

  // The names of the calls that have not returned, with their ages.
  std::string Unfinished() const;

  using Endings = std::pmr::map<std::pair<std::size_t, ROLU_STATUS>, std::uint64_t>;  // by family and status
  Endings endings() const { return Locked(endings_); }
  using Durations = std::pmr::map<std::string_view, DurationFigures>;  // by promise
  Durations durations() const { return Locked(durations_); }
  std::uint64_t calls() const { return Locked(calls_); }

 private:
  struct Running {
    const Operation* operation = nullptr;
    SteadyTime start{};
  };
  // A call that has ended.
  struct Span {
    SteadyTime start{};
    SteadyTime end{};
    std::chrono::milliseconds may_hold_line{0};
  };
  static constexpr std::size_t kRemembered = 8192;

  template <typename Member>
  Member Locked(const Member& member) const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return member;
  }
  // With mutex_ held.
  std::chrono::microseconds TimeOfOthers(std::size_t lane, SteadyTime start, SteadyTime end) const;

  mutable std::mutex mutex_;
  std::array<Running, kLanes> running_{};
  std::array<Span, kRemembered> ended_{};
  std::size_t next_ended_ = 0;
  std::uint64_t calls_ = 0;
  // The soak compares the process's memory, so the tables have their full size from the start.
  std::array<std::byte, 65536> room_{};
  std::pmr::monotonic_buffer_resource memory_{room_.data(), room_.size(), std::pmr::null_memory_resource()};
  Endings endings_{&memory_};
  Durations durations_{&memory_};
};

}  // namespace rolu_soak
