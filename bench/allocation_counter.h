#pragma once

#include <cstdint>

namespace rolu_bench {

// How often this process has asked for heap memory, from whatever thread and whatever object: the
// program's own malloc, calloc and realloc stand before the C library's, and operator new ends in them.
std::uint64_t AllocationCount();

}  // namespace rolu_bench
