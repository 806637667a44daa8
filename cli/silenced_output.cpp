#include "cli/silenced_output.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>

namespace rolu {

SilencedOutput::SilencedOutput() : saved_(fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1)) {
  std::fflush(stdout);
  const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
  if (saved_ >= 0 && nowhere >= 0) dup2(nowhere, STDOUT_FILENO);
  if (nowhere >= 0) close(nowhere);
}

SilencedOutput::~SilencedOutput() {
  std::fflush(stdout);
  if (saved_ < 0) return;
  dup2(saved_, STDOUT_FILENO);
  close(saved_);
}

}  // namespace rolu
