#pragma once

#include <signal.h>

#include <string>
#include <vector>

namespace rolu_sim {

// Runs one program in place of this process: signals that are sent to this process go on to the
// program, and this process lives until the program has ended. Make it before any thread starts,
// so that all threads leave those signals to it.
class ChildProcess {
 public:
  ChildProcess();

  // The program's exit status, or one of exit_status.h after a message.
  int Run(const std::vector<std::string>& command);

 private:
  int WaitForEnd(pid_t child) const;

  sigset_t watched_{};
  sigset_t mask_before_{};
};

}  // namespace rolu_sim
