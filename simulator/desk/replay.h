#pragma once

#include <chrono>
#include <cstddef>
#include <deque>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/desk/trace.h"
#include "simulator/line/reply.h"

namespace rolu_sim {

// A recorded trace that answers in place of the MCU. Each command gets the answer from the recording, after
// the recorded delay. A command that was recorded several times gets its answers in their order. A line that
// no command asked for follows the command after which it was recorded. Any thread may call any member of one
// Replay.
class Replay {
 public:
  // A line that came before the first command.
  struct EarlyLine {
    std::chrono::nanoseconds time;
    std::string line;
  };

  // Reads a file. Throws UsageError with the file, the line and what is wrong there.
  explicit Replay(const std::string& path);

  const std::vector<EarlyLine>& early_lines() const { return early_lines_; }

  // Nothing when the recording holds no (further) answer to `command`; that is said once for each on
  // standard error.
  std::optional<Reply> AnswerTo(std::string_view command);

  // How much of the recording was asked for, in a sentence.
  std::string Summary() const;

 private:
  struct Recorded {
    std::size_t position;
    Reply reply;
  };

  void Take(const std::vector<TraceRecord>& records);

  std::size_t commands_ = 0;
  std::vector<EarlyLine> early_lines_;

  mutable std::mutex mutex_;
  std::map<std::string, std::deque<Recorded>, std::less<>> answers_;
  std::map<std::string, std::size_t, std::less<>> unknown_;
  std::size_t asked_ = 0;
  std::size_t out_of_order_ = 0;
  std::size_t furthest_ = 0;
};

}  // namespace rolu_sim
