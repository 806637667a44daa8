#pragma once

#include <string>

namespace rolu_sim {

// Throws std::system_error with errno and what was being done.
[[noreturn]] void ThrowErrno(const std::string& doing);

}  // namespace rolu_sim
