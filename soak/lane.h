#ifndef SOAK_LANE_H
#define SOAK_LANE_H

#include <cstdint>
#include <mutex>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "include/kavo_rolu.h"
#include "soak/wire_code.h"

namespace rolu_soak {

// What became of a command at the MCU.
enum class Strike { kNone, kDelay, kSilence, kLate, kError, kGarble, kDrop, kLongLine };

// A command that reached the MCU, and its answer.
struct Exchange {
  const WireCode* code = nullptr;
  std::string command;
  std::uint64_t number = 0;
  Strike strike = Strike::kNone;
  ROLU_STATUS error = ROLU_STATUS_SUCCESS;  // kError: what the call has to answer
};

// One thread's side of the wire: the commands that the MCU gets while its call runs are that call's.
class Lane {
 public:
  explicit Lane(std::uint32_t seed) : random_(seed) { exchanges_.reserve(kMostCommands); }

  void BeginCall() {
    const std::lock_guard<std::mutex> lock(mutex_);
    calling_ = true;
    exchanges_.clear();
  }
  void EndCall() {
    const std::lock_guard<std::mutex> lock(mutex_);
    calling_ = false;
  }

  // A command that comes while no call runs came by itself, or too late.
  void Record(Exchange exchange) {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (calling_) {
      exchanges_.push_back(std::move(exchange));
    } else {
      uncalled_ = exchange.command;
    }
  }
  // The last such command since the last time; empty if there was none.
  std::string TakeUncalled() {
    const std::lock_guard<std::mutex> lock(mutex_);
    return std::exchange(uncalled_, {});
  }

  // The rest is the thread's own.
  std::vector<Exchange> Exchanges() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return exchanges_;
  }

  // The last answer to that command in this call; a number that no answer has if there was none.
  std::uint64_t Number(std::string_view code) const {
    const std::lock_guard<std::mutex> lock(mutex_);
    std::uint64_t number = UINT64_MAX;
    for (const Exchange& exchange : exchanges_) {
      if (exchange.code->code == code) number = exchange.number;
    }
    return number;
  }

  // The last command of this call.
  std::string LastCommand() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return exchanges_.empty() ? std::string() : exchanges_.back().command;
  }

  // 0 to `below` - 1. Not the standard library's distribution, which may differ between its versions.
  std::uint32_t Draw(std::uint32_t below) { return static_cast<std::uint32_t>(random_()) % below; }

 private:
  // More than one call sends: the list has its whole size from the start, since memory is compared.
  static constexpr std::size_t kMostCommands = 16;

  mutable std::mutex mutex_;
  bool calling_ = false;
  std::vector<Exchange> exchanges_;
  std::string uncalled_;
  std::mt19937 random_;
};

}  // namespace rolu_soak

#endif  // SOAK_LANE_H
