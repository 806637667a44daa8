#pragma once

#include <dlfcn.h>
#include <stddef.h>

#include <atomic>

// The C library's function that ends a fortified program whose buffer would overflow.
extern "C" [[noreturn]] void __chk_fail();

namespace rolu_sim {

inline size_t Checked(size_t size, size_t buffer_size) {
  if (size > buffer_size) __chk_fail();
  return size;
}

// The function of this name that the program would have called without `kWrapper`. It is looked up at its
// first use, because programs open files before any of our constructors has run.
template <auto kWrapper>
static auto Next(const char* name) {
  static std::atomic<void*> next{nullptr};
  void* function = next.load(std::memory_order_acquire);
  if (function == nullptr) {
    function = dlsym(RTLD_NEXT, name);
    next.store(function, std::memory_order_release);
  }
  return reinterpret_cast<decltype(kWrapper)>(function);
}

}  // namespace rolu_sim
