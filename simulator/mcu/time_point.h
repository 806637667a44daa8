#pragma once

#include <chrono>

namespace rolu_sim {

using TimePoint = std::chrono::steady_clock::time_point;

}  // namespace rolu_sim
