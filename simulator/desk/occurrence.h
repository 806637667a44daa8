#pragma once

#include <condition_variable>
#include <mutex>
#include <optional>
#include <stop_token>
#include <string>
#include <utility>
#include <vector>

#include "simulator/mcu/clock.h"

namespace rolu_sim {

// Something that a scenario can wait for.
struct Occurrence {
  enum class Kind {
    kCommand,
    kEvent,
    kProgramEnd,
    kBoardEnd,  // nothing comes after it
  };

  TimePoint time;
  Kind kind = Kind::kCommand;
  std::string text{};   // the command's line, or the name of the event
  std::string cause{};  // of an event; may be empty
  int status = 0;       // of the program that ended

  std::string InWords() const {
    if (kind == Kind::kProgramEnd) return "the program ended with status " + std::to_string(status);
    if (kind == Kind::kBoardEnd) return "the board went down";
    return cause.empty() ? text + " came" : text + " (" + cause + ") came";
  }
};

// Brings occurrences from the threads on which they happen to the one that waits for them. While nobody
// waits for any, they are dropped. Any thread may call any member.
class OccurrenceQueue {
 public:
  void Open() {
    const std::lock_guard<std::mutex> lock(mutex_);
    open_ = true;
    waiting_.clear();
  }
  void Close() {
    const std::lock_guard<std::mutex> lock(mutex_);
    open_ = false;
  }

  void Add(Occurrence occurrence) {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (!open_) return;
    waiting_.push_back(std::move(occurrence));
    added_.notify_all();
  }

  // Waits until there is an occurrence, `due` passes or `stop` is requested. Gives the occurrences in their
  // order.
  std::vector<Occurrence> Take(const std::stop_token& stop, std::optional<TimePoint> due) {
    std::unique_lock<std::mutex> lock(mutex_);
    const auto has_some = [this] { return !waiting_.empty(); };
    if (due) {
      added_.wait_until(lock, stop, *due, has_some);
    } else {
      added_.wait(lock, stop, has_some);
    }
    return std::exchange(waiting_, {});
  }

 private:
  std::mutex mutex_;
  std::condition_variable_any added_;
  bool open_ = false;
  std::vector<Occurrence> waiting_;
};

}  // namespace rolu_sim
