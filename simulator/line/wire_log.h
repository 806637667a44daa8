#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "simulator/mcu/clock.h"

namespace rolu_sim {

enum class Direction { kToMcu, kFromMcu };

// Bytes that passed the wire. The time of bytes to the MCU is when they had arrived. The time of bytes from
// the MCU is when they were about to leave, so a latency measured from it is never too short.
struct WireEvent {
  TimePoint time;
  Direction direction;
  std::string bytes;
};

// What passed the wire: the chunks as they were read and written, and the lines in them without their line
// ends. Keeps the newest kCapacity of each. Any thread may call any member.
class WireLog {
 public:
  static constexpr std::size_t kCapacity = 65536;

  using LineListener = std::function<void(const WireEvent&)>;

  // `listener` (may be empty) gets each line on the thread that recorded it. It must not call that McuSerial.
  explicit WireLog(LineListener listener) : listener_(std::move(listener)) {}

  void RecordChunk(Direction direction, TimePoint time, std::string_view bytes) {
    Append(chunks_, {time, direction, std::string(bytes)});
  }
  void RecordLine(Direction direction, TimePoint time, std::string_view line) {
    const WireEvent event{time, direction, std::string(line)};
    Append(lines_, event);
    if (listener_) listener_(event);
  }

  std::vector<WireEvent> Chunks() const { return CopyOf(chunks_); }
  std::vector<WireEvent> Lines() const { return CopyOf(lines_); }

  void Clear() {
    const std::lock_guard<std::mutex> lock(mutex_);
    chunks_.clear();
    lines_.clear();
  }

 private:
  void Append(std::deque<WireEvent>& events, WireEvent event) {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (events.size() == kCapacity) events.pop_front();
    events.push_back(std::move(event));
  }
  std::vector<WireEvent> CopyOf(const std::deque<WireEvent>& events) const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return {events.begin(), events.end()};
  }

  const LineListener listener_;
  mutable std::mutex mutex_;
  std::deque<WireEvent> chunks_;
  std::deque<WireEvent> lines_;
};

}  // namespace rolu_sim
