#pragma once

#include <signal.h>

#include <string>
#include <vector>

namespace rolu_sim {

// Keeps the signals that end a process away from this one, for as long as it has a board to take down.
// Make it before any thread starts. A pipe that nobody reads ends nothing either.
class HeldSignals {
 public:
  HeldSignals();

  // Waits for one of them, or for the end of a child (SIGCHLD).
  siginfo_t Wait() const;

  // What a program that is started gets.
  const sigset_t& mask_before() const { return mask_before_; }
  bool pipe_was_default() const { return pipe_was_default_; }

 private:
  sigset_t watched_{};
  sigset_t mask_before_{};
  bool pipe_was_default_ = false;
};

// A board ends as if somebody had ended this process.
void EndThisProcess();

// Runs one program in place of this process: signals that are sent to this process go on to the
// program. Gives the program's exit status, or one of cli/exit_status.h after a message.
int RunChild(const std::vector<std::string>& command, const HeldSignals& signals);

// Becomes the program; comes back only when it cannot be started, as RunChild does then.
int BecomeProgram(const std::vector<std::string>& command);

}  // namespace rolu_sim
