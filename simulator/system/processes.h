#pragma once

#include <sys/types.h>

#include <vector>

namespace rolu_sim {

// The processes that there are now, as far as the system tells. Any of them may end at once.
std::vector<pid_t> Processes();

}  // namespace rolu_sim
