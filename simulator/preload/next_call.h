#pragma once

#include <dlfcn.h>

#include <atomic>

namespace rolu_sim {

// The function of this name that the program would have called without the preloaded object.
// Looked up at its first use: programs open files before any constructor of ours has run.
template <typename Function>
class NextCall {
 public:
  explicit constexpr NextCall(const char* name) : name_(name) {}

  Function get() {
    Function function = function_.load(std::memory_order_acquire);
    if (function == nullptr) {
      function = reinterpret_cast<Function>(dlsym(RTLD_NEXT, name_));
      function_.store(function, std::memory_order_release);
    }
    return function;
  }

 private:
  const char* name_;
  std::atomic<Function> function_{nullptr};
};

}  // namespace rolu_sim
