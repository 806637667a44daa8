#include "soak/call_book.h"

#include <fmt/format.h>

#include <algorithm>

namespace rolu_soak {
namespace {

using std::chrono::duration_cast;
using std::chrono::microseconds;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

// A command without a limit never holds the line.
milliseconds PromiseOf(const Operation& operation) {
  return milliseconds(std::max(operation.promise.own_ms, 0));
}

microseconds Overlap(SteadyTime start, SteadyTime end, SteadyTime other_start, SteadyTime other_end) {
  const auto overlap = std::min(end, other_end) - std::max(start, other_start);
  return std::max(duration_cast<microseconds>(overlap), microseconds(0));
}

}  // namespace

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
  const milliseconds promised = PromiseOf(operation);

  ++calls_;
  ++endings_[{operation.family, status}];
  DurationFigures& figures = durations_[operation.promise.statement];
  figures.own_ms = operation.promise.own_ms;
  ++figures.calls;
  figures.longest = std::max(figures.longest, took);
  if (alone) figures.longest_alone = std::max(figures.longest_alone, took);

  Duration duration;
  duration.took = took;
  if (operation.promise.own_ms != kNoLimit && took > promised + kSchedulingSlack) {
    const microseconds others = TimeOfOthers(lane, call.start, end);
    if (took > promised + kSchedulingSlack + others) {
      duration.excess = fmt::format("took {} ms; it promises {} ms, and other calls account for {} ms",
                                    took.count() / 1000, promised.count(), others.count() / 1000);
    }
  }
  ended_.at(next_ended_) = {call.start, end, promised};
  next_ended_ = (next_ended_ + 1) % kRemembered;
  return duration;
}

microseconds CallBook::TimeOfOthers(std::size_t lane, SteadyTime start, SteadyTime end) const {
  microseconds sum{0};
  for (const Ended& other : ended_) {
    sum += std::min<microseconds>(Overlap(start, end, other.start, other.end), other.promised);
  }
  for (std::size_t other = 0; other < running_.size(); ++other) {
    const Running& call = running_.at(other);
    if (other == lane || call.operation == nullptr) continue;
    sum += std::min<microseconds>(Overlap(start, end, call.start, end), PromiseOf(*call.operation));
  }
  return sum;
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

CallBook::Endings CallBook::endings() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return endings_;
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
