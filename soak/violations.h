#ifndef SOAK_VIOLATIONS_H
#define SOAK_VIOLATIONS_H

#include <cstddef>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace rolu_soak {

// What went against a promise: the first ones in words, all of them counted. Any thread may call any
// member.
class Violations {
 public:
  static constexpr std::size_t kKept = 20;

  void Add(std::string what) {
    const std::lock_guard<std::mutex> lock(mutex_);
    ++count_;
    if (kept_.size() < kKept) kept_.push_back(std::move(what));
  }
  std::size_t count() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return count_;
  }
  std::vector<std::string> Kept() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return kept_;
  }

 private:
  mutable std::mutex mutex_;
  std::size_t count_ = 0;
  std::vector<std::string> kept_;
};

}  // namespace rolu_soak

#endif  // SOAK_VIOLATIONS_H
