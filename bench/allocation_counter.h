#pragma once

#include <cstdint>

namespace rolu_bench {

// How often this process has asked for heap memory, in any thread and any object: the program's own malloc,
// calloc and realloc replace the C library's, and operator new calls them.
std::uint64_t AllocationCount();

}  // namespace rolu_bench
