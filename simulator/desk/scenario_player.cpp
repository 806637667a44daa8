#include "simulator/desk/scenario_player.h"

#include <utility>

#include "simulator/system/background_thread.h"

namespace rolu_sim {

// The desk may call these listeners for as long as it lives, so they keep the queue alive.
ScenarioPlayer::ScenarioPlayer(Desk& desk, BoardUse use, std::function<void()> on_settled)
    : desk_(desk), use_(use), on_settled_(std::move(on_settled)) {
  desk.trace().AddListener([queue = occurrences_, start = desk.start()](const TraceRecord& record) {
    if (record.direction != TraceDirection::kToMcu) return;
    queue->Add({start + record.time, Occurrence::Kind::kCommand, record.line});
  });
  desk.OnEvent([queue = occurrences_](const McuEvent& event) {
    queue->Add({event.time, Occurrence::Kind::kEvent, std::string(NameOf(event.kind)), event.cause});
  });
}

void ScenarioPlayer::Play(Scenario scenario) {
  if (use_ == BoardUse::kServed) CheckForServedBoard(scenario);
  const std::lock_guard<std::mutex> lock(thread_mutex_);
  thread_ = {};
  occurrences_->Open();
  auto run = std::make_unique<ScenarioRun>(desk_, std::move(scenario), std::chrono::steady_clock::now());
  const BlockedSignals blocked;
  thread_ =
      std::jthread([this, run = std::move(run)](const std::stop_token& stop) { PlayToItsEnd(stop, *run); });
}

// What the program sent came before its end.
void ScenarioPlayer::TellProgramEnd(int status) {
  const std::lock_guard<std::mutex> lock(thread_mutex_);
  desk_.board().mcu().TakeWhatWasSent();
  occurrences_->Add(
      {.time = std::chrono::steady_clock::now(), .kind = Occurrence::Kind::kProgramEnd, .status = status});
}

ScenarioOutcome ScenarioPlayer::TellBoardEnd() {
  const std::lock_guard<std::mutex> lock(thread_mutex_);
  occurrences_->Add({.time = std::chrono::steady_clock::now(), .kind = Occurrence::Kind::kBoardEnd});
  if (thread_.joinable()) thread_.join();
  const std::lock_guard<std::mutex> outcome_lock(outcome_mutex_);
  return outcome_;
}

void ScenarioPlayer::PlayToItsEnd(const std::stop_token& stop, ScenarioRun& run) {
  while (!run.IsOver()) {
    const auto due = run.NextDue(std::chrono::steady_clock::now());
    for (const Occurrence& occurrence : occurrences_->Take(stop, due)) run.Hear(occurrence);
    if (stop.stop_requested()) return;
    run.Advance(std::chrono::steady_clock::now());
  }
  occurrences_->Close();
  const ScenarioOutcome outcome = run.Conclude();
  Take(outcome);
  if (outcome.settled_early && on_settled_) on_settled_();
}

void ScenarioPlayer::Take(const ScenarioOutcome& outcome) {
  const std::lock_guard<std::mutex> lock(outcome_mutex_);
  outcome_.failed |= outcome.failed;
  outcome_.settled_early |= outcome.settled_early;
  outcome_.is_status_expected |= outcome.is_status_expected;
  outcome_.has_shut_down |= outcome.has_shut_down;
  outcome_.expected_events.insert(outcome.expected_events.begin(), outcome.expected_events.end());
}

}  // namespace rolu_sim
