#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/mcu/time_point.h"

namespace rolu_sim {

enum class Direction { kToMcu, kFromMcu };

// Bytes that passed the wire. To the MCU, the time is when they had arrived; from the MCU, when
// they were about to leave (so a latency measured against it is never too short).
struct WireEvent {
  TimePoint time;
  Direction direction;
  std::string bytes;
};

// What passed the wire: raw chunks as they were read and written, and the lines in them without
// their line ends. Keeps the newest kCapacity of each. Every member may be called by any thread.
class WireLog {
 public:
  static constexpr std::size_t kCapacity = 65536;

  using LineListener = std::function<void(const WireEvent&)>;

  // `listener` (may be empty) hears each line on the thread that recorded it; it must not call the
  // McuSerial whose line it hears.
  explicit WireLog(LineListener listener);

  void RecordChunk(Direction direction, TimePoint time, std::string_view bytes);
  void RecordLine(Direction direction, TimePoint time, std::string_view line);

  std::vector<WireEvent> Chunks() const;
  std::vector<WireEvent> Lines() const;

  // The texts of the lines to the MCU, oldest first.
  std::vector<std::string> Commands() const;

  // Waits until `command` has been received `count` times since the last Clear (or the start);
  // false when `timeout` has passed before that.
  bool WaitForCommand(std::string_view command, std::chrono::milliseconds timeout,
                      std::size_t count = 1) const;

  void Clear();

 private:
  const LineListener listener_;
  mutable std::mutex mutex_;
  mutable std::condition_variable line_recorded_;
  std::deque<WireEvent> chunks_;
  std::deque<WireEvent> lines_;
};

}  // namespace rolu_sim
