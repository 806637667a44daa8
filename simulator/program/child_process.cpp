#include "simulator/program/child_process.h"

#include <pthread.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <iostream>

#include "simulator/program/exit_status.h"

namespace rolu_sim {
namespace {

constexpr int kForwarded[] = {SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGUSR1, SIGUSR2, SIGALRM, SIGWINCH};

int ReportFailedStart(const std::string& program, int error) {
  std::cerr << "rolu-sim: " << program << ": " << std::strerror(error) << '\n';
  return error == ENOENT ? kNotFound : kNotExecutable;
}

// The terminal sends its signals to the program as well; only those that another process sent to
// this one are passed on.
bool CameFromProcess(const siginfo_t& signal) {
  return signal.si_code <= 0;
}

}  // namespace

ChildProcess::ChildProcess() {
  signal(SIGCHLD, SIG_DFL);
  sigemptyset(&watched_);
  sigaddset(&watched_, SIGCHLD);
  for (const int number : kForwarded) sigaddset(&watched_, number);
  pthread_sigmask(SIG_BLOCK, &watched_, &mask_before_);
}

int ChildProcess::Run(const std::vector<std::string>& command) {
  std::vector<char*> arguments;
  arguments.reserve(command.size() + 1);
  // The new process gets copies; the type is what C had before const.
  for (const std::string& word : command) arguments.push_back(const_cast<char*>(word.c_str()));
  arguments.push_back(nullptr);

  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK);
  posix_spawnattr_setsigmask(&attributes, &mask_before_);
  pid_t child = 0;
  const int error =
      posix_spawnp(&child, command.front().c_str(), nullptr, &attributes, arguments.data(), environ);
  posix_spawnattr_destroy(&attributes);
  return error == 0 ? WaitForEnd(child) : ReportFailedStart(command.front(), error);
}

int ChildProcess::WaitForEnd(pid_t child) const {
  while (true) {
    siginfo_t signal{};
    const int number = sigwaitinfo(&watched_, &signal);
    if (number < 0) continue;
    if (number != SIGCHLD) {
      if (CameFromProcess(signal)) kill(child, number);
      continue;
    }
    int status = 0;
    if (waitpid(child, &status, WNOHANG) != child) continue;
    return WIFSIGNALED(status) ? kSignalBase + WTERMSIG(status) : WEXITSTATUS(status);
  }
}

}  // namespace rolu_sim
