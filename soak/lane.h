#ifndef SOAK_LANE_H
#define SOAK_LANE_H

#include <cstdint>
#include <mutex>
#include <optional>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace rolu_soak {

// A command that reached the MCU, and the line that answers it; nothing where no such line comes.
struct Exchange {
  std::string command;
  std::optional<std::string> reply;
};

// One thread's side of the wire: the commands that the MCU gets while its call runs are that call's.
class Lane {
 public:
  explicit Lane(std::uint32_t seed) : random_(seed) { exchanges_.reserve(kMostCommands); }

  void BeginCall() {
    const std::lock_guard<std::mutex> lock(mutex_);
    calling_ = true;
  }
  // Keeps nothing of the call: what the process holds at rest is compared.
  std::vector<Exchange> EndCall() {
    const std::lock_guard<std::mutex> lock(mutex_);
    calling_ = false;
    std::vector<Exchange> exchanges = exchanges_;
    exchanges_.clear();
    return exchanges;
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

  // 0 to `below` - 1. Not the standard library's distribution, which may differ between its versions. The
  // thread's own.
  std::uint32_t Draw(std::uint32_t below) { return static_cast<std::uint32_t>(random_()) % below; }

 private:
  // More than one call sends: the list has its whole size from the start.
  static constexpr std::size_t kMostCommands = 16;

  std::mutex mutex_;
  bool calling_ = false;
  std::vector<Exchange> exchanges_;
  std::string uncalled_;
  std::mt19937 random_;
};

}  // namespace rolu_soak

#endif  // SOAK_LANE_H
