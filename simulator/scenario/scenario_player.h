#pragma once

#include <condition_variable>
#include <mutex>
#include <thread>

#include "simulator/control/desk.h"
#include "simulator/scenario/scenario.h"

namespace rolu_sim {

// Plays a scenario on a desk, from now on, on a thread of its own; destroyed, it stops. An event that
// the board refuses is told on standard error, and the scenario goes on.
class ScenarioPlayer {
 public:
  ScenarioPlayer(Desk& desk, Scenario scenario);
  ~ScenarioPlayer();
  ScenarioPlayer(const ScenarioPlayer&) = delete;
  ScenarioPlayer& operator=(const ScenarioPlayer&) = delete;

 private:
  void Run();
  bool WaitUntil(TimePoint time);

  Desk& desk_;
  const Scenario scenario_;
  const TimePoint start_;
  std::mutex mutex_;
  std::condition_variable stopped_;
  bool stopping_ = false;
  std::thread thread_;
};

}  // namespace rolu_sim
