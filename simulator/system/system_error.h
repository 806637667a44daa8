#pragma once

#include <cerrno>
#include <string>
#include <system_error>

namespace rolu_sim {

// Throws std::system_error with errno; `doing` says what failed.
[[noreturn]] inline void ThrowErrno(const std::string& doing) {
  throw std::system_error(errno, std::generic_category(), doing);
}

}  // namespace rolu_sim
