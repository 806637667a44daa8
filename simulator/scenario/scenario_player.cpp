#include "simulator/scenario/scenario_player.h"

#include <fmt/format.h>

#include <utility>

#include "simulator/background_thread.h"

namespace rolu_sim {

ScenarioPlayer::ScenarioPlayer(Desk& desk, Scenario scenario)
    : desk_(desk), scenario_(std::move(scenario)), start_(std::chrono::steady_clock::now()) {
  const BlockedSignals blocked;
  thread_ = std::thread([this] { Run(); });
}

ScenarioPlayer::~ScenarioPlayer() {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    stopping_ = true;
  }
  stopped_.notify_all();
  thread_.join();
}

void ScenarioPlayer::Run() {
  for (const Scenario::Event& event : scenario_.events) {
    if (!WaitUntil(start_ + event.at)) return;
    try {
      desk_.Apply(event.action);
    } catch (const std::exception& problem) {
      desk_.Say(
          fmt::format("scenario, {} ms: {}: {}", event.at.count(), event.action.verb->name, problem.what()));
    }
  }
}

// False when the player is to stop.
bool ScenarioPlayer::WaitUntil(TimePoint time) {
  std::unique_lock<std::mutex> lock(mutex_);
  return !stopped_.wait_until(lock, time, [this] { return stopping_; });
}

}  // namespace rolu_sim
