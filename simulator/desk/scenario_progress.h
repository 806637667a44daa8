#pragma once

#include <cstddef>
#include <string>

namespace rolu_sim {

// How far the scenario of a desk has come.
struct ScenarioProgress {
  std::string description;
  std::size_t steps_done = 0;  // verbs, each once however often it is repeated
  std::size_t steps_waiting = 0;
  std::size_t expectations_met = 0;
  std::size_t expectations_failed = 0;
  std::size_t expectations_pending = 0;
  std::string failure;  // what failed first; empty: nothing
};

}  // namespace rolu_sim
