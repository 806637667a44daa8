#include "simulator/program/child_process.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "cli/exit_status.h"
#include "cli/messages.h"

namespace rolu_sim {
namespace {

constexpr int kHeld[] = {SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGUSR1, SIGUSR2, SIGALRM, SIGWINCH};

int ReportFailedStart(const std::string& program, int error) {
  rolu::SayProblem(program + ": " + rolu::ErrnoText(error));
  return error == ENOENT ? rolu::kNotFound : rolu::kNotExecutable;
}

// The exec functions copy their arguments; their parameter type is from before C had const.
std::vector<char*> AsArguments(const std::vector<std::string>& command) {
  std::vector<char*> arguments;
  arguments.reserve(command.size() + 1);
  for (const std::string& word : command) arguments.push_back(const_cast<char*>(word.c_str()));
  arguments.push_back(nullptr);
  return arguments;
}

// How long a program may go on after EndProgram.
constexpr std::chrono::seconds kGrace(2);

bool IsFromEndProgram(const siginfo_t& signal) {
  return signal.si_code == SI_QUEUE && signal.si_pid == getpid();
}

// Passes on the signals that came before the program started: the program has missed them, even those from
// the terminal. Gives whether one is from EndProgram.
bool PassOnEarlierSignals(pid_t child) {
  sigset_t held{};
  sigemptyset(&held);
  for (const int number : kHeld) sigaddset(&held, number);
  const timespec no_time{};
  siginfo_t signal{};
  bool is_to_end = false;
  while (sigtimedwait(&held, &signal, &no_time) > 0) {
    kill(child, signal.si_signo);
    is_to_end |= IsFromEndProgram(signal);
  }
  return is_to_end;
}

bool AsksForEnd(int signal) {
  return signal == SIGINT || signal == SIGTERM || signal == SIGHUP || signal == SIGQUIT;
}

int WaitForEnd(pid_t child, const HeldSignals& signals, const std::function<void()>& on_end_signal) {
  bool is_to_end = PassOnEarlierSignals(child);
  std::optional<HeldSignals::TimePoint> kill_due;
  while (true) {
    if (is_to_end && !kill_due) kill_due = std::chrono::steady_clock::now() + kGrace;
    const std::optional<siginfo_t> signal = signals.Wait(kill_due);
    if (!signal) {
      kill(child, SIGKILL);
      kill_due = HeldSignals::TimePoint::max();
      continue;
    }
    if (signal->si_signo != SIGCHLD) {
      is_to_end |= IsFromEndProgram(*signal);
      // The terminal sends its signals to the program as well. So only signals that another process sent to
      // this process are passed on.
      if (signal->si_code <= 0) kill(child, signal->si_signo);
      if (AsksForEnd(signal->si_signo)) on_end_signal();
      continue;
    }
    int status = 0;
    if (waitpid(child, &status, WNOHANG) != child) continue;
    return WIFSIGNALED(status) ? rolu::kSignalBase + WTERMSIG(status) : WEXITSTATUS(status);
  }
}

}  // namespace

HeldSignals::HeldSignals() {
  signal(SIGCHLD, SIG_DFL);
  pipe_was_default_ = signal(SIGPIPE, SIG_IGN) == SIG_DFL;
  sigemptyset(&watched_);
  sigaddset(&watched_, SIGCHLD);
  for (const int number : kHeld) sigaddset(&watched_, number);
  // Under nohup the closing terminal ends neither the board nor its program.
  struct sigaction hang_up {};
  sigaction(SIGHUP, nullptr, &hang_up);
  if (hang_up.sa_handler == SIG_IGN) sigdelset(&watched_, SIGHUP);
  pthread_sigmask(SIG_BLOCK, &watched_, &mask_before_);
}

std::optional<siginfo_t> HeldSignals::Wait(std::optional<TimePoint> due) const {
  siginfo_t signal{};
  while (!due) {
    if (sigwaitinfo(&watched_, &signal) >= 0) return signal;
  }
  while (true) {
    const auto left = std::max(*due - std::chrono::steady_clock::now(), std::chrono::nanoseconds(0));
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(left);
    const timespec wait{static_cast<time_t>(seconds.count()), static_cast<long>((left - seconds).count())};
    if (sigtimedwait(&watched_, &signal, &wait) >= 0) return signal;
    if (errno == EAGAIN) return std::nullopt;
  }
}

void EndThisProcess() {
  kill(getpid(), SIGTERM);
}

void EndProgram() {
  sigqueue(getpid(), SIGTERM, {});
}

int RunChild(const std::vector<std::string>& command, const HeldSignals& signals,
             const std::function<void()>& on_end_signal) {
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  sigset_t defaults{};
  sigemptyset(&defaults);
  if (signals.pipe_was_default()) sigaddset(&defaults, SIGPIPE);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
  posix_spawnattr_setsigmask(&attributes, &signals.mask_before());
  posix_spawnattr_setsigdefault(&attributes, &defaults);
  pid_t child = 0;
  const int error = posix_spawnp(&child, command.front().c_str(), nullptr, &attributes,
                                 AsArguments(command).data(), environ);
  posix_spawnattr_destroy(&attributes);
  return error == 0 ? WaitForEnd(child, signals, on_end_signal) : ReportFailedStart(command.front(), error);
}

int BecomeProgram(const std::vector<std::string>& command) {
  execvp(command.front().c_str(), AsArguments(command).data());
  return ReportFailedStart(command.front(), errno);
}

}  // namespace rolu_sim
