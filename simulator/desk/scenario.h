#pragma once

#include <chrono>
#include <stop_token>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "simulator/desk/desk.h"

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

  // Sorts the events by time; events of the same time keep their order.
  void Sort();

  std::string description;
  std::vector<Event> events;
};

// Everything that is wrong with a scenario, one line for each problem: "FILE:LINE:COLUMN: what".
class ScenarioError : public UsageError {
 public:
  using UsageError::UsageError;
};

// Reads and checks a whole scenario. `name` stands for the file in messages. Throws ScenarioError.
Scenario ParseScenario(std::string_view text, const std::string& name);

// Plays a scenario on a desk from now on, on its own thread; the destructor stops it. When the board refuses
// an event, the player says so on standard error and goes on.
class ScenarioPlayer {
 public:
  ScenarioPlayer(Desk& desk, Scenario scenario);

 private:
  void Run(const std::stop_token& stop);

  Desk& desk_;
  const Scenario scenario_;
  const TimePoint start_;
  std::jthread thread_;
};

}  // namespace rolu_sim
