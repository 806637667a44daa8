#pragma once

#include <stdexcept>

namespace rolu_bench {

// Throws when something went wrong, since no figure can be taken then.
inline void Require(bool condition, const char* what) {
  if (!condition) throw std::runtime_error(what);
}

}  // namespace rolu_bench
