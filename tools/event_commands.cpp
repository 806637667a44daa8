#include "tools/event_commands.h"

#include <errno.h>
#include <fcntl.h>
#include <fmt/format.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <utility>

#include "tools/interrupt.h"
#include "tools/messages.h"
#include "tools/nearest.h"

namespace rolu {
namespace {

std::vector<std::string> KnownEvents() {
  std::vector<std::string> names;
  for (const EventName& event : EventNames()) names.emplace_back(event.name);
  return names;
}

// The environment of this process and two variables more.
std::vector<std::string> EnvironmentOf(const Event& event, std::string_view name) {
  std::vector<std::string> environment;
  char** end = environ;
  while (*end != nullptr) ++end;
  environment.assign(environ, end);
  environment.push_back(fmt::format("ROLU_EVENT={}", name));
  environment.push_back(fmt::format("ROLU_TIME={}", event.time));
  return environment;
}

std::vector<char*> Pointers(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  pointers.reserve(texts.size() + 1);
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

// 0, or the errno of why the shell could not be started.
int StartShell(const std::string& command, std::vector<std::string> environment, pid_t& pid) {
  std::vector<std::string> arguments = {"sh", "-c", command};
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_adddup2(&actions, STDERR_FILENO, STDOUT_FILENO);
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  sigset_t defaults;
  sigemptyset(&defaults);
  sigaddset(&defaults, SIGPIPE);
  posix_spawnattr_setsigdefault(&attributes, &defaults);
  // A process group of its own, so that what the shell starts ends with it.
  posix_spawnattr_setpgroup(&attributes, 0);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETPGROUP);
  const int error = posix_spawn(&pid, "/bin/sh", &actions, &attributes, Pointers(arguments).data(),
                                Pointers(environment).data());
  posix_spawnattr_destroy(&attributes);
  posix_spawn_file_actions_destroy(&actions);
  return error;
}

}  // namespace

EventCommands::EventCommands(std::vector<std::pair<std::string, std::string>> commands)
    : commands_(std::move(commands)) {
  const std::vector<std::string> known = KnownEvents();
  for (const auto& [name, command] : commands_) {
    if (std::find(known.begin(), known.end(), name) != known.end()) continue;
    throw CommandError(kWrongUse, fmt::format("there is no event '{}'{}", name, Suggestion(name, known)));
  }
}

void EventCommands::Start(const Event& event, std::string_view name) {
  for (const auto& [wanted, command] : commands_) {
    if (wanted != name) continue;
    pid_t pid = 0;
    const int error = StartShell(command, EnvironmentOf(event, name), pid);
    if (error == 0) {
      running_.push_back({pid, command});
    } else {
      SayProblem(fmt::format("could not run '{}': {}", command, ErrnoText(error)));
    }
  }
}

bool EventCommands::HasEnded(const Running& running, int flags) {
  int status = 0;
  const pid_t ended = waitpid(running.pid, &status, flags);
  if (ended == 0 || (ended < 0 && errno == EINTR)) return false;
  if (WIFSIGNALED(status)) {
    SayProblem(fmt::format("'{}' was ended by signal {}", running.command, WTERMSIG(status)));
  } else if (WEXITSTATUS(status) != 0) {
    SayProblem(fmt::format("'{}' ended with status {}", running.command, WEXITSTATUS(status)));
  }
  return true;
}

void EventCommands::Reap() {
  running_.erase(std::remove_if(running_.begin(), running_.end(),
                                [this](const Running& running) { return HasEnded(running, WNOHANG); }),
                 running_.end());
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
