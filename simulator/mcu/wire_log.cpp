#include "simulator/mcu/wire_log.h"

#include <algorithm>
#include <utility>

namespace rolu_sim {
namespace {

void Append(std::deque<WireEvent>& events, WireEvent event) {
  if (events.size() == WireLog::kCapacity) events.pop_front();
  events.push_back(std::move(event));
}

}  // namespace

WireLog::WireLog(LineListener listener) : listener_(std::move(listener)) {}

void WireLog::RecordChunk(Direction direction, TimePoint time, std::string_view bytes) {
  const std::lock_guard<std::mutex> lock(mutex_);
  Append(chunks_, {time, direction, std::string(bytes)});
}

void WireLog::RecordLine(Direction direction, TimePoint time, std::string_view line) {
  WireEvent event{time, direction, std::string(line)};
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    Append(lines_, event);
    line_recorded_.notify_all();
  }
  if (listener_) listener_(event);
}

std::vector<WireEvent> WireLog::Chunks() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return {chunks_.begin(), chunks_.end()};
}

std::vector<WireEvent> WireLog::Lines() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return {lines_.begin(), lines_.end()};
}

std::vector<std::string> WireLog::Commands() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  std::vector<std::string> commands;
  for (const WireEvent& line : lines_) {
    if (line.direction == Direction::kToMcu) commands.push_back(line.bytes);
  }
  return commands;
}

bool WireLog::WaitForCommand(std::string_view command, std::chrono::milliseconds timeout,
                             std::size_t count) const {
  std::unique_lock<std::mutex> lock(mutex_);
  return line_recorded_.wait_for(lock, timeout, [&] {
    const auto received = std::count_if(lines_.begin(), lines_.end(), [&](const WireEvent& line) {
      return line.direction == Direction::kToMcu && line.bytes == command;
    });
    return static_cast<std::size_t>(received) >= count;
  });
}

void WireLog::Clear() {
  const std::lock_guard<std::mutex> lock(mutex_);
  chunks_.clear();
  lines_.clear();
}

}  // namespace rolu_sim
