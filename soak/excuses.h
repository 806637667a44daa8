#ifndef SOAK_EXCUSES_H
#define SOAK_EXCUSES_H

#include <algorithm>
#include <cstdint>

#include "soak/lane.h"

namespace rolu_soak {

// So many of the calls may be excused. Each one that is says nothing about the library, and a machine that
// gives the threads too little time for more than a thousandth is none to judge it on. A moment without a
// processor meets as many calls as there are threads: a short run has to stand one.
inline std::uint64_t ExcusableCalls(std::uint64_t calls) {
  return std::max<std::uint64_t>(kLanes, calls / 1000);
}

}  // namespace rolu_soak

#endif  // SOAK_EXCUSES_H
