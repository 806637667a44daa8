#ifndef SOAK_FAULT_H
#define SOAK_FAULT_H

#include <chrono>
#include <string>

namespace rolu_soak {

// What is wrong with a call.
struct Fault {
  // However long threads waited for a processor.
  static constexpr std::chrono::nanoseconds kUnexplained = std::chrono::nanoseconds::max();

  std::string text;  // empty: nothing is wrong
  // A thread that was ready to run, and waited so long for a processor meanwhile, explains it.
  std::chrono::nanoseconds explained_by = kUnexplained;
};

}  // namespace rolu_soak

#endif  // SOAK_FAULT_H
