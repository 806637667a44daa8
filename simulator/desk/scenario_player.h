#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "simulator/desk/scenario_run.h"

namespace rolu_sim {

enum class BoardUse {
  kOneProgram,  // the board is for one program and goes down with it
  kServed,      // programs come and go
};

// Plays scenarios on a desk, one at a time, on a thread of its own. When the board refuses a step, the player
// says so on standard error and goes on. Any thread may call any member. The desk must outlive this object.
class ScenarioPlayer {
 public:
  // `on_settled` (may be empty) is called on the player's thread when an expectation of a scenario has
  // failed, or when all have been met and no other step is due. It is not called after the end of the
  // program.
  ScenarioPlayer(Desk& desk, BoardUse use, std::function<void()> on_settled = nullptr);

  // Plays a scenario from now on and ends the one that is playing. Throws ScenarioError when the scenario
  // expects something of a program and the board is served.
  void Play(Scenario scenario);

  // Tells that the program for which the board was started has ended.
  void TellProgramEnd(int status);

  // Tells that the board goes down. What a scenario still expects has failed. Gives what all scenarios have
  // shown.
  ScenarioOutcome TellBoardEnd();

 private:
  void PlayToItsEnd(const std::stop_token& stop, ScenarioRun& run);
  void Take(const ScenarioOutcome& outcome);

  Desk& desk_;
  const BoardUse use_;
  const std::function<void()> on_settled_;
  const std::shared_ptr<OccurrenceQueue> occurrences_ = std::make_shared<OccurrenceQueue>();
  std::mutex outcome_mutex_;
  ScenarioOutcome outcome_;
  std::mutex thread_mutex_;
  std::jthread thread_;
};

}  // namespace rolu_sim
