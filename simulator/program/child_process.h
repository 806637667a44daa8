#pragma once

#include <signal.h>

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace rolu_sim {

// Holds back the signals that end a process, so that this process can take its board down first. Make it
// before any thread starts. SIGPIPE does not end the process either.
class HeldSignals {
 public:
  HeldSignals();

  // Waits for one of these signals, or for the end of a child (SIGCHLD). Gives nothing when `due` has come.
  using TimePoint = std::chrono::steady_clock::time_point;
  std::optional<siginfo_t> Wait(std::optional<TimePoint> due) const;
  siginfo_t Wait() const { return *Wait(std::nullopt); }

  // The signal mask for a program that this process starts.
  const sigset_t& mask_before() const { return mask_before_; }
  bool pipe_was_default() const { return pipe_was_default_; }

 private:
  sigset_t watched_{};
  sigset_t mask_before_{};
  bool pipe_was_default_ = false;
};

// Ends the board as if somebody had sent SIGTERM to this process.
void EndThisProcess();

// Ends the program of RunChild, or the board, likewise. A program that still runs a moment later is killed.
void EndProgram();

// Runs one program as a child, and passes on to it the signals that are sent to this process. Gives the
// program's exit status. Calls `on_end_signal` when a signal asks for the end: a stopped program hears none.
// If the program cannot start, writes a message and gives a status of cli/exit_status.h.
int RunChild(const std::vector<std::string>& command, const HeldSignals& signals,
             const std::function<void()>& on_end_signal);

// Replaces this process by the program. Returns only when the program cannot start, then like RunChild.
int BecomeProgram(const std::vector<std::string>& command);

}  // namespace rolu_sim
