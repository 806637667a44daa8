#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>

namespace rolu {

// Discards what is printed on standard output while this object lives. The library prints a line when its VPM
// family starts, but other programs read the output of these programs.
class SilencedOutput {
 public:
  SilencedOutput() : saved_(fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1)) {
    std::fflush(stdout);
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    if (saved_ >= 0 && nowhere >= 0) dup2(nowhere, STDOUT_FILENO);
    if (nowhere >= 0) close(nowhere);
  }
  ~SilencedOutput() {
    std::fflush(stdout);
    if (saved_ < 0) return;
    dup2(saved_, STDOUT_FILENO);
    close(saved_);
  }
  SilencedOutput(const SilencedOutput&) = delete;
  SilencedOutput& operator=(const SilencedOutput&) = delete;

 private:
  int saved_;
};

}  // namespace rolu
