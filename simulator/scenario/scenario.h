#pragma once

#include <chrono>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/control/verb.h"

namespace rolu_sim {

// What happens to a board, and when:
//
//   {
//     "description": "the ignition goes off, and the power after it",
//     "events": [
//       {"at": "2s", "do": "ignition", "state": "off"},
//       {"at": 3.5, "do": "power-off-warning", "cause": "ignition"},
//       {"at": "4s", "every": "500ms", "repeat": 10, "do": "shock"}
//     ]
//   }
//
// A time is a text with a unit or a number of seconds. "do" is a verb; its parameters are the other
// members.
struct Scenario {
  struct Event {
    std::chrono::milliseconds at{0};
    Action action;
  };

  std::string description;
  std::vector<Event> events;  // by their times; those of the same time as they were written
};

// All that is wrong with a scenario, one line for each: "FILE:LINE:COLUMN: what".
class ScenarioError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Reads and checks a whole scenario. `name` stands for the file in messages. Throws ScenarioError.
Scenario ParseScenario(std::string_view text, const std::string& name);

}  // namespace rolu_sim
