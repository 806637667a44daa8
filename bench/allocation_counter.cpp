#include "bench/allocation_counter.h"

#include <atomic>
#include <cstddef>
#include <cstdlib>

namespace {

std::atomic<std::uint64_t> allocation_count{0};

void Count() {
  allocation_count.fetch_add(1, std::memory_order_relaxed);
}

}  // namespace

namespace rolu_bench {

std::uint64_t AllocationCount() {
  return allocation_count.load(std::memory_order_relaxed);
}

}  // namespace rolu_bench

extern "C" {

// The C library's own names for its allocator; looking it up by dlsym would allocate.
// NOLINTBEGIN(bugprone-reserved-identifier)
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void __libc_free(void* block);
// NOLINTEND(bugprone-reserved-identifier)

void* malloc(std::size_t size) noexcept {
  Count();
  return __libc_malloc(size);
}

void* calloc(std::size_t count, std::size_t size) noexcept {
  Count();
  return __libc_calloc(count, size);
}

void* realloc(void* block, std::size_t size) noexcept {
  Count();
  return __libc_realloc(block, size);
}

void free(void* block) noexcept {
  __libc_free(block);
}

}  // extern "C"
