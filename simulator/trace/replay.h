#pragma once

#include <chrono>
#include <cstddef>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/line/reply.h"
#include "simulator/trace/trace_record.h"

namespace rolu_sim {

// A recorded trace as the MCU's script. Each command gets the answer that it got in the recording,
// after the same time; one that was sent several times gets its answers in their order. Lines that no
// command asked for follow the command that they followed. Any thread may call any member of one.
class Replay {
 public:
  // A line that came before the first command.
  struct EarlyLine {
    std::chrono::nanoseconds time;
    std::string line;
  };

  // Throws std::runtime_error with the file, the line and what is wrong there.
  static Replay FromFile(const std::string& path);

  explicit Replay(const std::vector<TraceRecord>& records);

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
  struct Progress {
    std::mutex mutex;
    std::map<std::string, std::deque<Recorded>, std::less<>> answers;
    std::map<std::string, std::size_t, std::less<>> unknown;
    std::size_t asked = 0;
    std::size_t out_of_order = 0;
    std::size_t furthest = 0;
  };

  std::size_t commands_ = 0;
  std::vector<EarlyLine> early_lines_;
  std::unique_ptr<Progress> progress_;
};

}  // namespace rolu_sim
