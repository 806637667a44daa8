#pragma once

#include <stdexcept>

namespace rolu_bench {

// A figure of something that went wrong is none.
inline void Require(bool condition, const char* what) {
  if (!condition) throw std::runtime_error(what);
}

}  // namespace rolu_bench
