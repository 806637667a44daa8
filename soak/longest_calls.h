#ifndef SOAK_LONGEST_CALLS_H
#define SOAK_LONGEST_CALLS_H

#include <chrono>
#include <string>
#include <vector>

#include "soak/operations.h"

namespace rolu_soak {

struct PlannedAnswer {
  std::string code;
  std::chrono::milliseconds delay;  // AnsweringMcu::kNever: silence
};

// A call and the answers that make it last nearly as long as it may.
struct LongestCall {
  const Operation& operation;
  std::vector<PlannedAnswer> answers;
  std::chrono::milliseconds lasts;  // at least
};

const std::vector<LongestCall>& LongestCalls();

}  // namespace rolu_soak

#endif  // SOAK_LONGEST_CALLS_H
