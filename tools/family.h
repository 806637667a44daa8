#pragma once

#include <cstddef>

namespace rolu {

// The parts of the library that are brought up on their own, in the order in which they are.
enum class Family { kCore, kVpm, kWatchdog, kGsensor, kPeripherals };

inline constexpr std::size_t kFamilies = 5;

}  // namespace rolu
