#include "soak/call_book.h"

#include <fmt/format.h>

#include <algorithm>
#include <vector>

namespace rolu_soak {
namespace {

using std::chrono::duration_cast;
using std::chrono::microseconds;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

milliseconds MayHoldLine(const Operation& operation) {
  return milliseconds(operation.promise.takes_turns ? operation.promise.own_ms : 0);
}

struct Span {
  SteadyTime start;
  SteadyTime end;
};

// How much of the time is in at least one of them.
microseconds Covered(std::vector<Span> spans) {
  std::sort(spans.begin(), spans.end(), [](const Span& a, const Span& b) { return a.start < b.start; });
  steady_clock::duration covered{0};
  SteadyTime until = SteadyTime::min();
  for (const Span& span : spans) {
    if (span.end <= until) continue;
    covered += span.end - std::max(span.start, until);
    until = span.end;
  }
  return duration_cast<microseconds>(covered);
}

}  // namespace

CallBook::CallBook() {
  constexpr std::size_t kStatuses = 64;  // more than there are
  endings_.reserve(kFamilies * kStatuses);
  const auto add = [this](const Operation& operation) {
    durations_[operation.promise.statement].own_ms = operation.promise.own_ms;
  };
  for (const FamilyCalls& family : Families()) {
    add(family.initialize);
    add(family.deinitialize);
  }
  for (const Operation& operation : Operations()) add(operation);
}

void CallBook::Begin(std::size_t lane, const Operation& operation) {
  const std::lock_guard<std::mutex> lock(mutex_);
  running_.at(lane) = {&operation, steady_clock::now()};
}

CallBook::Duration CallBook::End(std::size_t lane, ROLU_STATUS status, bool alone) {
  const SteadyTime end = steady_clock::now();
  const std::lock_guard<std::mutex> lock(mutex_);
  const Running call = running_.at(lane);
  running_.at(lane) = {};
  const Operation& operation = *call.operation;
  const auto took = duration_cast<microseconds>(end - call.start);
  const bool takes_turns = operation.promise.takes_turns && !alone;
  const microseconds others = takes_turns ? TimeOfOthers(lane, call.start, end) : microseconds(0);

  ++calls_;
  CountEnding(operation.family, status);
  DurationFigures& figures = durations_[operation.promise.statement];
  figures.own_ms = operation.promise.own_ms;
  ++figures.calls;
  if (alone) {
    ++figures.calls_alone;
    figures.longest_alone = std::max(figures.longest_alone, took);
  } else {
    figures.longest_beside = std::max(figures.longest_beside, took);
    figures.longest_less_others = std::max(figures.longest_less_others, took - others);
  }

  Duration duration;
  duration.took = took;
  const milliseconds promised(operation.promise.own_ms);
  const microseconds over = took - others - promised - (alone ? kSlackAlone : kSlackBeside);
  if (operation.promise.own_ms != kNoLimit && over.count() > 0) {
    duration.fault = {fmt::format("took {} ms; it promises {} ms, and other calls account for {} ms",
                                  took.count() / 1000, promised.count(), others.count() / 1000),
                      over};
  }
  ended_.at(next_ended_) = {call.start, end, MayHoldLine(operation)};
  next_ended_ = (next_ended_ + 1) % kRemembered;
  return duration;
}

microseconds CallBook::TimeOfOthers(std::size_t lane, SteadyTime start, SteadyTime end) const {
  std::vector<Span> spans;
  microseconds promised{0};
  const auto add = [&](SteadyTime other_start, SteadyTime other_end, milliseconds may_hold_line) {
    const Span span{std::max(start, other_start), std::min(end, other_end)};
    if (may_hold_line.count() == 0 || span.end <= span.start) return;
    promised += std::min<microseconds>(duration_cast<microseconds>(span.end - span.start), may_hold_line);
    spans.push_back(span);
  };
  for (const Ended& other : ended_) add(other.start, other.end, other.may_hold_line);
  for (std::size_t other = 0; other < running_.size(); ++other) {
    const Running& call = running_.at(other);
    if (other != lane && call.operation != nullptr) add(call.start, end, MayHoldLine(*call.operation));
  }
  return std::min(promised, Covered(std::move(spans)));
}

std::string CallBook::Unfinished() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  std::string text;
  for (const Running& call : running_) {
    if (call.operation == nullptr) continue;
    const auto age = duration_cast<std::chrono::seconds>(steady_clock::now() - call.start);
    text += fmt::format("{}{} for {} s", text.empty() ? "" : ", ", call.operation->name, age.count());
  }
  return text;
}

void CallBook::CountEnding(std::size_t family, ROLU_STATUS status) {
  const auto known = std::find_if(endings_.begin(), endings_.end(), [&](const Ending& ending) {
    return ending.family == family && ending.status == status;
  });
  if (known == endings_.end()) {
    endings_.push_back({family, status, 1});
  } else {
    ++known->calls;
  }
}

CallBook::Endings CallBook::endings() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  Endings endings;
  for (const Ending& ending : endings_) endings[{ending.family, ending.status}] = ending.calls;
  return endings;
}

std::map<std::string, DurationFigures> CallBook::durations() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return durations_;
}

std::uint64_t CallBook::calls() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return calls_;
}

}  // namespace rolu_soak
