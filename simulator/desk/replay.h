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

// What a program may send that the recording does not have.
enum class ReplayRule {
  kLenient,   // anything
  kReported,  // anything, but the run has failed at its end
  kStrict,    // nothing: the first such command ends the program
};

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
  Replay(const std::string& path, ReplayRule rule);

  ReplayRule rule() const { return rule_; }

  const std::vector<EarlyLine>& early_lines() const { return early_lines_; }

  // Nothing when the recording holds no (further) answer to `command`. Unless the rule is strict, that is
  // said once for each on standard error.
  std::optional<Reply> AnswerTo(std::string_view command);

  // The command that the recording has next, in words.
  std::string Next() const;

  // Whether the program sent a command that the recording does not have, or has no more.
  bool LacksCommands() const;

  // The same, or whether the program has not sent a command that the recording has. Another order is no
  // divergence: programs have threads.
  bool HasDiverged() const;

  // How much of the recording was asked for, in a sentence.
  std::string Summary() const;

 private:
  struct Recorded {
    std::size_t position;
    std::chrono::nanoseconds time;
    Reply reply;
  };

  void Take(const std::vector<TraceRecord>& records);

  const ReplayRule rule_;
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
