#ifndef SOAK_GATE_H
#define SOAK_GATE_H

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace rolu_soak {

// Lets at most so many threads through at once. Whoever closes it keeps the others out in their turn,
// however many come.
class Gate {
 public:
  static constexpr int kAll = 1000;

  void Enter() {
    std::unique_lock<std::mutex> lock(mutex_);
    changed_.wait(lock, [this] { return inside_ < limit_; });
    ++inside_;
  }
  void Leave() {
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

class Inside {
 public:
  explicit Inside(Gate& gate) : gate_(gate) { gate_.Enter(); }
  ~Inside() { gate_.Leave(); }
  Inside(const Inside&) = delete;
  Inside& operator=(const Inside&) = delete;

 private:
  Gate& gate_;
};

}  // namespace rolu_soak

#endif  // SOAK_GATE_H
