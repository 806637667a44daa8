#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/desk/expectation.h"
#include "simulator/desk/verb.h"

namespace rolu_sim {

// What happens to a board, when, and what is expected then:
//
//   {
//     "description": "the ignition goes off, the program shuts down in time",
//     "events": [
//       {"at": "2s", "do": "ignition", "state": "off"},
//       {"after": "ignition-warning", "expect": "command", "command": "WDTD", "within": 0.5, "name": "fed"},
//       {"after": "fed", "delay": "100ms", "do": "shock"},
//       {"after": "ignition-warning", "expect": "shutdown", "within": "3s"}
//     ]
//   }
//
// A time is a text with a unit or a number of seconds. "do" is a verb, "expect" an expectation; their
// parameters are the other members.
struct Scenario {
  // What a step waits for.
  struct Trigger {
    enum class Kind { kStart, kStep, kEvent, kCommand };

    Kind kind = Kind::kStart;
    std::size_t step = 0;  // of kStep
    std::string text;      // the name of the event or of the step, the beginning of the command
  };

  // Either a verb, once or several times, or an expectation.
  struct Step {
    Trigger after;
    std::chrono::milliseconds delay{0};  // from what it waits for
    Action action;                       // without a verb for an expectation
    std::chrono::milliseconds every{0};
    std::int64_t repeat = 1;
    Expectation expectation;
    std::chrono::milliseconds within{0};
    std::string name;   // may be empty
    std::string place;  // FILE:LINE

    bool IsExpectation() const { return action.verb == nullptr; }
  };

  std::string description;
  std::vector<Step> steps;
};

// Everything that is wrong with a scenario, one line for each problem: "FILE:LINE:COLUMN: what".
class ScenarioError : public UsageError {
 public:
  using UsageError::UsageError;
};

// Reads and checks a whole scenario. `name` stands for the file in messages. Throws ScenarioError.
Scenario ParseScenario(std::string_view text, const std::string& name);

// A served board has no program of its own. Throws ScenarioError when the scenario expects something of one.
void CheckForServedBoard(const Scenario& scenario);

}  // namespace rolu_sim
