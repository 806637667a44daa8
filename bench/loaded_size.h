#pragma once

#include <cstddef>

namespace rolu_bench {

// Memory that the segments of a shared object take.
struct LoadedSize {
  std::size_t own_bytes = 0;
  std::size_t with_needed_bytes = 0;  // with all that it needs beyond the C library
};

// The size of the shared object that holds this function; zero for null.
LoadedSize LoadedSizeOf(const void* function_inside);

}  // namespace rolu_bench
