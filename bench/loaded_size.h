#pragma once

#include <cstddef>

namespace rolu_bench {

// Memory that the segments of a shared object take.
struct LoadedSize {
  std::size_t own_bytes = 0;
  std::size_t with_needed_bytes = 0;  // and of all that it needs and that not every C program has loaded
};

// Of the shared object with this function; nothing for null.
LoadedSize LoadedSizeOf(const void* function_inside);

}  // namespace rolu_bench
