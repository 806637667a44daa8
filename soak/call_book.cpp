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

}  // namespace

void CallBook::Begin(std::size_t lane, const Operation& operation) {
  const std::lock_guard<std::mutex> lock(mutex_);
  running_.at(lane) = {&operation, steady_clock::now()};
}

CallBook::Duration CallBook::End(std::size_t lane, ROLU_STATUS status, bool alone) {
  const SteadyTime end = steady_clock::now();
  const std::lock_guard<std::mutex> lock(mutex_);
  const Running call = std::exchange(running_.at(lane), {});
  const Operation& operation = *call.operation;
  const auto took = duration_cast<microseconds>(end - call.start);
  const bool takes_turns = operation.promise.takes_turns && !alone;
  const microseconds others = takes_turns ? TimeOfOthers(lane, call.start, end) : microseconds(0);

  ++calls_;
  ++endings_[{operation.family, status}];
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
  ended_.at(next_ended_) = {call.start, end, MayHoldLine(operation)};
  next_ended_ = (next_ended_ + 1) % kRemembered;

  const milliseconds promised(operation.promise.own_ms);
  const microseconds over = took - others - promised - (alone ? kSlackAlone : kSlackBeside);
  if (operation.promise.own_ms == kNoLimit || over.count() <= 0) return {took, {}};
  return {took,
          {fmt::format("took {} ms; it promises {} ms, and other calls account for {} ms",
                       took.count() / 1000, promised.count(), others.count() / 1000),
           over}};
}

microseconds CallBook::TimeOfOthers(std::size_t lane, SteadyTime start, SteadyTime end) const {
  std::vector<Span> spans;
  microseconds promised{0};
  const auto add = [&](const Span& other) {
    const Span span{std::max(start, other.start), std::min(end, other.end)};
    if (other.may_hold_line.count() == 0 || span.end <= span.start) return;
    promised +=
        std::min<microseconds>(duration_cast<microseconds>(span.end - span.start), other.may_hold_line);
    spans.push_back(span);
  };
  for (const Span& other : ended_) add(other);
  for (std::size_t other = 0; other < running_.size(); ++other) {
    const Running& call = running_.at(other);
    if (other != lane && call.operation != nullptr) add({call.start, end, MayHoldLine(*call.operation)});
  }
  // The time that at least one of the spans covers.
  std::ranges::sort(spans, {}, &Span::start);
  steady_clock::duration covered{0};
  SteadyTime until = SteadyTime::min();
  for (const Span& span : spans) {
    if (span.end <= until) continue;
    covered += span.end - std::max(span.start, until);
    until = span.end;
  }
  return std::min(promised, duration_cast<microseconds>(covered));
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

}  // namespace rolu_soak
