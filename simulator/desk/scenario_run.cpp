#include "simulator/desk/scenario_run.h"

#include <fmt/format.h>

#include <algorithm>
#include <iostream>
#include <utility>

#include "cli/duration.h"

namespace rolu_sim {
namespace {

using Trigger = Scenario::Trigger;

// No device tells when a program has set it, so it is looked at this often.
constexpr std::chrono::milliseconds kBetweenLooks(5);

// What an expectation expected, beginning at `begins` if that is known.
std::string Demand(const Scenario::Step& step, std::optional<double> begins_s) {
  std::string text = fmt::format("{} expects {}, within {}", step.place, Describe(step.expectation),
                                 rolu::FormatDuration(step.within));
  if (begins_s) text += fmt::format(" from {:.3f} s", *begins_s);
  if (step.after.kind != Trigger::Kind::kStart) text += fmt::format(" (after {})", step.after.text);
  return text;
}

// Why the time for an expectation has not come.
std::string WhyNotBegun(const Trigger& after) {
  switch (after.kind) {
    case Trigger::Kind::kEvent:
    case Trigger::Kind::kCommand:
      return after.text + " did not come in time";
    case Trigger::Kind::kStep:
      return fmt::format("\"{}\" was not done in time", after.text);
    case Trigger::Kind::kStart:
      break;
  }
  return "its time had not come";
}

// The last lines on the wire, as the trace shows them.
std::string LastWireLines(const Trace& trace) {
  constexpr std::size_t kLines = 8;
  constexpr std::uint64_t kRecordsBack = 1000;
  std::vector<std::string> lines;
  const std::uint64_t count = trace.Count();
  for (const TraceRecord& record : trace.From(count - std::min(count, kRecordsBack)).records) {
    if (IsOnWire(record.direction)) lines.push_back(ToText(record));
  }
  lines.erase(lines.begin(), lines.end() - static_cast<std::ptrdiff_t>(std::min(lines.size(), kLines)));
  return lines.empty() ? "nothing was on the wire"
                       : fmt::format("the last lines on the wire:\n{}", fmt::join(lines, "\n"));
}

}  // namespace

ScenarioRun::ScenarioRun(Desk& desk, Scenario scenario, TimePoint start)
    : desk_(desk), scenario_(std::move(scenario)), states_(scenario_.steps.size()) {
  for (std::size_t step = 0; step < states_.size(); ++step) {
    const bool waits = scenario_.steps[step].after.kind != Trigger::Kind::kStart;
    if (!waits) states_[step].begins = start + scenario_.steps[step].delay;
  }
  Publish();
}

void ScenarioRun::Hear(const Occurrence& occurrence) {
  for (auto next = FirstDue(occurrence.time); next && scenario_.steps[*next].IsExpectation();
       next = FirstDue(occurrence.time)) {
    JudgeByTime(*next, occurrence.time);
  }
  if (IsOver()) return;
  // An expectation that begins with this occurrence waits for the next one.
  std::vector<std::size_t> judging;
  for (std::size_t step = 0; step < states_.size(); ++step) {
    const Scenario::Step& expected = scenario_.steps[step];
    if (expected.IsExpectation() && expected.expectation.kind->judge && HasBegun(step, occurrence.time) &&
        occurrence.time < DueOf(step)) {
      judging.push_back(step);
    }
  }
  for (const std::size_t step : judging) {
    const Expectation& expectation = scenario_.steps[step].expectation;
    const Verdict verdict = expectation.kind->judge(expectation.arguments, occurrence);
    if (verdict == Verdict::kMet && ++states_[step].times == expectation.Times()) Meet(step, occurrence.time);
    if (verdict == Verdict::kFailed) Fail(step, occurrence.time, occurrence.InWords());
  }
  for (std::size_t step = 0; step < states_.size(); ++step) {
    const Trigger& after = scenario_.steps[step].after;
    const bool comes =
        (after.kind == Trigger::Kind::kEvent && occurrence.kind == Occurrence::Kind::kEvent &&
         occurrence.text == after.text) ||
        (after.kind == Trigger::Kind::kCommand && occurrence.kind == Occurrence::Kind::kCommand &&
         occurrence.text.starts_with(after.text));
    if (comes && !states_[step].begins) states_[step].begins = occurrence.time + scenario_.steps[step].delay;
  }
  if (occurrence.kind == Occurrence::Kind::kProgramEnd) program_end_ = occurrence;
  if (occurrence.kind == Occurrence::Kind::kBoardEnd) FailTheRest(occurrence);
}

void ScenarioRun::Advance(TimePoint now) {
  const std::optional<std::size_t> next = FirstDue(now);
  if (!next) return;
  if (scenario_.steps[*next].IsExpectation()) {
    JudgeByTime(*next, now);
  } else {
    Do(*next);
  }
}

std::optional<TimePoint> ScenarioRun::NextDue(TimePoint now) const {
  std::optional<TimePoint> due;
  for (std::size_t step = 0; step < states_.size(); ++step) {
    if (!IsPending(step) || !states_[step].begins) continue;
    due = Sooner(due, DueOf(step));
    const ExpectationKind* const kind = scenario_.steps[step].expectation.kind;
    if (kind == nullptr || !kind->holds) continue;
    due = Sooner(due, std::max(*states_[step].begins, now + kBetweenLooks));
  }
  return due;
}

bool ScenarioRun::IsOver() const {
  if (board_has_ended_ || !first_failure_.empty()) return true;
  bool expects = false;
  bool is_all_done = true;
  for (std::size_t step = 0; step < states_.size(); ++step) {
    const bool is_expectation = scenario_.steps[step].IsExpectation();
    expects = expects || is_expectation;
    if (!IsPending(step)) continue;
    if (is_expectation || states_[step].begins) return false;
    is_all_done = false;
  }
  return expects || is_all_done;
}

ScenarioOutcome ScenarioRun::Conclude() {
  ScenarioOutcome outcome;
  outcome.failed = !first_failure_.empty();
  for (std::size_t step = 0; step < states_.size(); ++step) {
    const auto& [kind, arguments] = scenario_.steps[step].expectation;
    if (kind == nullptr || states_[step].verdict != Verdict::kMet) continue;
    if (arguments.Has("event")) outcome.expected_events.insert(arguments.Get<std::string>("event"));
    if (kind->verb.name == "shutdown") outcome.has_shut_down = true;
    if (arguments.Has("status")) outcome.is_status_expected = true;
  }
  const std::size_t met = CountExpectations(Verdict::kMet);
  outcome.settled_early = !program_end_ && !board_has_ended_ && (met > 0 || outcome.failed);
  if (outcome.failed) {
    std::cerr << fmt::format("rolu-sim: {}\n", LastWireLines(desk_.trace()));
  } else if (met > 0) {
    desk_.trace().RecordEvent(TraceDirection::kBoard,
                              met == 1 ? "scenario: the expectation was met"
                                       : fmt::format("scenario: all {} expectations were met", met));
  }
  return outcome;
}

bool ScenarioRun::HasBegun(std::size_t step, TimePoint now) const {
  return IsPending(step) && states_[step].begins && *states_[step].begins <= now;
}

// When a verb is to be done, or when the time for an expectation is over.
TimePoint ScenarioRun::DueOf(std::size_t step) const {
  const Scenario::Step& due = scenario_.steps[step];
  return *states_[step].begins + (due.IsExpectation() ? due.within : states_[step].times * due.every);
}

std::optional<std::size_t> ScenarioRun::FirstDue(TimePoint now) {
  if (IsOver()) return std::nullopt;
  LookAtBoard(now);
  std::optional<std::size_t> first;
  for (std::size_t step = 0; step < states_.size(); ++step) {
    if (!HasBegun(step, now) || DueOf(step) > now) continue;
    if (!first || DueOf(step) < DueOf(*first)) first = step;
  }
  return first;
}

std::size_t ScenarioRun::CountExpectations(Verdict verdict) const {
  std::size_t count = 0;
  for (std::size_t step = 0; step < states_.size(); ++step) {
    if (scenario_.steps[step].IsExpectation() && states_[step].verdict == verdict) ++count;
  }
  return count;
}

void ScenarioRun::LookAtBoard(TimePoint now) {
  for (std::size_t step = 0; step < states_.size(); ++step) {
    const auto& [kind, arguments] = scenario_.steps[step].expectation;
    if (kind != nullptr && kind->holds && HasBegun(step, now) && kind->holds(desk_, arguments)) {
      Meet(step, now);
    }
  }
}

void ScenarioRun::JudgeByTime(std::size_t step, TimePoint now) {
  if (scenario_.steps[step].expectation.kind->is_met_by_time) {
    Meet(step, DueOf(step));
  } else {
    Fail(step, now, InsteadOf(step));
  }
}

void ScenarioRun::Do(std::size_t step) {
  const auto& [verb, arguments] = scenario_.steps[step].action;
  const TimePoint now = std::chrono::steady_clock::now();
  try {
    desk_.Apply(scenario_.steps[step].action);
  } catch (const std::exception& problem) {
    desk_.Say(fmt::format("scenario, {}: {}: {}", scenario_.steps[step].place, verb->name, problem.what()));
  }
  if (++states_[step].times == scenario_.steps[step].repeat) Meet(step, now);
}

// What follows a step begins with it.
void ScenarioRun::Meet(std::size_t step, TimePoint time) {
  states_[step].verdict = Verdict::kMet;
  for (std::size_t next = 0; next < states_.size(); ++next) {
    const Trigger& after = scenario_.steps[next].after;
    if (after.kind == Trigger::Kind::kStep && after.step == step) {
      states_[next].begins = time + scenario_.steps[next].delay;
    }
  }
  Publish();
}

void ScenarioRun::Fail(std::size_t step, TimePoint time, const std::string& instead) {
  const auto seconds = [&](TimePoint point) {
    return std::chrono::duration<double>(point - desk_.start()).count();
  };
  const auto& begins = states_[step].begins;
  const std::string text = fmt::format(
      "*** EXPECTATION FAILED at {:.3f} s: {}, but {} ***", seconds(time),
      Demand(scenario_.steps[step], begins ? std::optional(seconds(*begins)) : std::nullopt), instead);
  states_[step].verdict = Verdict::kFailed;
  if (first_failure_.empty()) first_failure_ = text;
  Publish();
  desk_.Say(text);
}

// At the end everything that was expected must have been met.
void ScenarioRun::FailTheRest(const Occurrence& end) {
  LookAtBoard(end.time);
  board_has_ended_ = true;
  const std::string ended = (program_end_ ? *program_end_ : end).InWords();
  for (std::size_t step = 0; step < states_.size(); ++step) {
    if (!scenario_.steps[step].IsExpectation() || !IsPending(step)) continue;
    const bool has_begun = HasBegun(step, end.time);
    if (has_begun && DueOf(step) <= end.time) {
      JudgeByTime(step, end.time);
      continue;
    }
    const std::string instead = has_begun ? InsteadOf(step) : WhyNotBegun(scenario_.steps[step].after);
    Fail(step, end.time, fmt::format("{}; {}", instead, ended));
  }
}

// What there is in place of what is expected now.
std::string ScenarioRun::InsteadOf(std::size_t step) const {
  const auto& [kind, arguments] = scenario_.steps[step].expectation;
  if (kind->instead) return kind->instead(desk_, arguments);
  const std::int64_t times = states_[step].times;
  if (times == 0) return "it did not come";
  return times == 1 ? "it came once" : fmt::format("it came {} times", times);
}

void ScenarioRun::Publish() {
  ScenarioProgress progress;
  progress.description = scenario_.description;
  progress.expectations_met = CountExpectations(Verdict::kMet);
  progress.expectations_failed = CountExpectations(Verdict::kFailed);
  progress.expectations_pending = CountExpectations(Verdict::kPending);
  for (std::size_t step = 0; step < states_.size(); ++step) {
    if (!scenario_.steps[step].IsExpectation())
      ++(IsPending(step) ? progress.steps_waiting : progress.steps_done);
  }
  progress.failure = first_failure_;
  desk_.Locked([&] { desk_.scenario_progress() = progress; });
}

}  // namespace rolu_sim
