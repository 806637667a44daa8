#include "tools/event_commands.h"

#include <errno.h>
#include <fcntl.h>
#include <fmt/format.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <utility>

#include "cli/messages.h"
#include "cli/nearest_name.h"
#include "tools/command_error.h"
#include "tools/interrupt.h"

namespace rolu {
namespace {

std::vector<std::string> KnownEvents() {
  std::vector<std::string> names;
  for (const EventName& event : EventNames()) names.emplace_back(event.name);
  return names;
}

[[noreturn]] void BecomeShell(const std::string& command, const Event& event, std::string_view name) {
  signal(SIGPIPE, SIG_DFL);
  const int nothing = open("/dev/null", O_RDONLY | O_CLOEXEC);
  dup2(nothing, STDIN_FILENO);
  dup2(STDERR_FILENO, STDOUT_FILENO);
  setenv("ROLU_EVENT", std::string(name).c_str(), 1);  // NOLINT(concurrency-mt-unsafe): it has one thread
  setenv("ROLU_TIME", event.time.c_str(), 1);          // NOLINT(concurrency-mt-unsafe)
  execl("/bin/sh", "sh", "-c", command.c_str(), nullptr);
  SayProblem(fmt::format("could not run \"{}\": {}", command, ErrnoText(errno)));
  _exit(kNotFound);
}

}  // namespace

EventCommands::EventCommands(std::vector<std::pair<std::string, std::string>> commands)
    : commands_(std::move(commands)) {
  const std::vector<std::string> known = KnownEvents();
  for (const auto& [name, command] : commands_) {
    if (std::find(known.begin(), known.end(), name) != known.end()) continue;
    throw CommandError(kWrongUse, fmt::format("there is no event \"{}\"{}", name, Suggestion(name, known)));
  }
}

void EventCommands::Start(const Event& event, std::string_view name) {
  for (const auto& [wanted, command] : commands_) {
    if (wanted != name) continue;
    const pid_t pid = fork();
    if (pid < 0) {
      SayProblem(fmt::format("could not run \"{}\": {}", command, ErrnoText(errno)));
      continue;
    }
    // A process group of its own, so that what the shell starts ends with it. Both processes make it: either
    // may come first.
    setpgid(pid, pid);
    if (pid == 0) BecomeShell(command, event, name);
    running_.push_back({pid, command});
  }
}

bool EventCommands::HasEnded(const Running& running, int flags) {
  int status = 0;
  const pid_t ended = waitpid(running.pid, &status, flags);
  if (ended == 0 || (ended < 0 && errno == EINTR)) return false;
  if (WIFSIGNALED(status)) {
    SayProblem(fmt::format("\"{}\" was ended by signal {}", running.command, WTERMSIG(status)));
  } else if (WEXITSTATUS(status) != 0) {
    SayProblem(fmt::format("\"{}\" ended with status {}", running.command, WEXITSTATUS(status)));
  }
  return true;
}

void EventCommands::Reap() {
  std::erase_if(running_, [this](const Running& running) { return HasEnded(running, WNOHANG); });
}

void EventCommands::WaitForEnd() {
  Reap();
  while (!running_.empty() && interrupt::SleepFor(std::chrono::milliseconds(20))) Reap();
  for (const Running& running : running_) kill(-running.pid, SIGTERM);
  while (!running_.empty()) {
    if (HasEnded(running_.back(), 0)) running_.pop_back();
  }
}

}  // namespace rolu
