#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "simulator/desk/desk.h"
#include "simulator/desk/occurrence.h"
#include "simulator/desk/scenario.h"

namespace rolu_sim {

// What a scenario has shown.
struct ScenarioOutcome {
  bool failed = false;                    // an expectation was not met
  bool settled_early = false;             // before the program ended
  bool is_status_expected = false;        // an expectation of the program's status was met
  bool has_shut_down = false;             // an expected shutdown came in time
  std::set<std::string> expected_events;  // the events that were expected, and came
};

// One scenario while it is played: which steps have begun, and what is expected at present. It has no thread
// and no clock.
class ScenarioRun {
 public:
  ScenarioRun(Desk& desk, Scenario scenario, TimePoint start);

  // Takes the occurrences in their order. Does no verb, so that a scenario that is late hears of an end.
  void Hear(const Occurrence& occurrence);

  // Does or judges the step that is due first, if one is due. Call it at NextDue.
  void Advance(TimePoint now);
  std::optional<TimePoint> NextDue(TimePoint now) const;

  // Whether nothing more can come of the scenario: an expectation has failed, the board goes down, or
  // everything is done. A step that follows what never came is not waited for once all expectations are met.
  bool IsOver() const;

  // Says how it went. Call it once, when it is over.
  ScenarioOutcome Conclude();

 private:
  struct StepState {
    std::optional<TimePoint> begins;
    std::int64_t times = 0;  // a verb was done, or what is expected occurred
    Verdict verdict = Verdict::kPending;
  };

  bool IsPending(std::size_t step) const { return states_[step].verdict == Verdict::kPending; }
  bool HasBegun(std::size_t step, TimePoint now) const;
  TimePoint DueOf(std::size_t step) const;
  std::size_t CountExpectations(Verdict verdict) const;

  // Looks at the board, then gives the step that is due first, if one is due.
  std::optional<std::size_t> FirstDue(TimePoint now);
  void LookAtBoard(TimePoint now);
  void JudgeByTime(std::size_t step, TimePoint now);
  void Do(std::size_t step);
  void Meet(std::size_t step, TimePoint time);
  void Fail(std::size_t step, TimePoint time, const std::string& instead);
  void FailTheRest(const Occurrence& end);
  std::string InsteadOf(std::size_t step) const;
  void Publish();

  Desk& desk_;
  const Scenario scenario_;
  std::vector<StepState> states_;
  std::optional<Occurrence> program_end_;
  bool board_has_ended_ = false;
  std::string first_failure_;
};

}  // namespace rolu_sim
