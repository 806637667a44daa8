#include <errno.h>
#include <fcntl.h>
#include <fmt/format.h>
#include <poll.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <limits>
#include <optional>
#include <utility>

#include "cli/command_line.h"
#include "cli/messages.h"
#include "cli/nearest_name.h"
#include "tools/board_watcher.h"
#include "tools/command.h"
#include "tools/guard.h"
#include "tools/interrupt.h"
#include "tools/status_words.h"

namespace rolu {
namespace {

using Clock = std::chrono::steady_clock;

// The name of an event and a shell command for it.
using CommandOfEvent = std::pair<std::string, std::string>;

struct WatchOptions {
  std::vector<CommandOfEvent> commands;
  unsigned count = 0;
  std::chrono::milliseconds time{0};
  WatchTask task;
};

const EventName& NameOf(EventKind kind) {
  static const EventName state = {EventKind::kState, "state", "watching"};
  const auto named = std::ranges::find(EventNames(), kind, &EventName::kind);
  return named == EventNames().end() ? state : *named;
}

void Tell(const Event& event, bool json) {
  const EventName& name = NameOf(event.kind);
  if (json) {
    Document line = {{"time", event.time}, {"event", name.name}};
    line.update(event.values);
    PrintJsonLine(line);
  } else {
    OutNow(
        fmt::format("{}  {}{}{}\n", event.time, name.words, event.detail.empty() ? "" : ": ", event.detail));
  }
}

// The shell commands that run at an event, while the watching goes on. Their output goes to standard error,
// because standard output is the stream of events.
class EventCommands {
 public:
  // Throws CommandError(kWrongUse) for an event that is not in EventNames.
  explicit EventCommands(const std::vector<CommandOfEvent>& commands) : commands_(commands) {
    std::vector<std::string> known;
    for (const EventName& event : EventNames()) known.emplace_back(event.name);
    for (const auto& [name, command] : commands_) {
      if (std::ranges::find(known, name) != known.end()) continue;
      throw CommandError(kWrongUse, fmt::format("there is no event \"{}\"{}", name, Suggestion(name, known)));
    }
  }

  // Starts the commands for an event, with ROLU_EVENT and ROLU_TIME in their environment.
  void Start(const Event& event) {
    const std::string name(NameOf(event.kind).name);
    for (const auto& [wanted, command] : commands_) {
      if (wanted != name) continue;
      const pid_t pid = fork();
      if (pid < 0) {
        SayNotRun(command);
        continue;
      }
      // The command gets its own process group, so that all its processes end with it. Parent and child both
      // set the group, because either may come first.
      setpgid(pid, pid);
      if (pid == 0) BecomeShell(command, name, event.time);
      running_.push_back({pid, command});
    }
  }

  // Reports the commands that have failed since the last call.
  void Reap() {
    std::erase_if(running_, [](const Running& running) { return HasEnded(running, WNOHANG); });
  }

  void AskToEnd() const {
    for (const Running& running : running_) kill(-running.pid, SIGTERM);
  }

  // Waits for the commands that still run. When a signal asks for an end, ends them.
  void WaitForEnd() {
    Reap();
    while (!running_.empty() && interrupt::SleepFor(std::chrono::milliseconds(20))) Reap();
    AskToEnd();
    while (!running_.empty()) {
      if (HasEnded(running_.back(), 0)) running_.pop_back();
    }
  }

 private:
  struct Running {
    pid_t pid;
    std::string command;
  };

  static void SayNotRun(const std::string& command) {
    SayProblem(fmt::format("could not run \"{}\": {}", command, ErrnoText(errno)));
  }

  [[noreturn]] static void BecomeShell(const std::string& command, const std::string& event,
                                       const std::string& time) {
    signal(SIGPIPE, SIG_DFL);
    const int nothing = open("/dev/null", O_RDONLY | O_CLOEXEC);
    dup2(nothing, STDIN_FILENO);
    dup2(STDERR_FILENO, STDOUT_FILENO);
    setenv("ROLU_EVENT", event.c_str(), 1);  // NOLINT(concurrency-mt-unsafe): it has one thread
    setenv("ROLU_TIME", time.c_str(), 1);    // NOLINT(concurrency-mt-unsafe)
    execl("/bin/sh", "sh", "-c", command.c_str(), nullptr);
    SayNotRun(command);
    _exit(kNotFound);
  }

  static bool HasEnded(const Running& running, int flags) {
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

  const std::vector<CommandOfEvent>& commands_;
  std::vector<Running> running_;
};

// Prints what the watching process sees. When that process's port hangs up, starts another process.
class Watch {
 public:
  Watch(const WatchOptions& options, const CommonOptions& common)
      : options_(options), commands_(options.commands), task_(options.task) {
    task_.common = common;
  }

  ExitStatus Run() {
    guard::SetLastWords("the MCU did not answer, so the G-sensor and its alarm may still be on");
    bool goes_on = true;
    while (goes_on && !IsOver()) {
      if (!process_ && Clock::now() >= next_start_) process_.emplace(task_);
      if (process_) goes_on = TellEvents();
      commands_.Reap();
      if (goes_on) Wait();
    }
    if (interrupt::Signal() != 0) commands_.AskToEnd();
    EndProcess();
    guard::SetLastWords("a command of --on may still run");
    if (status_ == BoardWatcher::kPortAway) {
      SayProblem("could not take down the G-sensor: the MCU's port hung up");
      status_ = kNoAnswer;
    }
    commands_.WaitForEnd();
    return static_cast<ExitStatus>(status_);
  }

 private:
  // How long to leave a port alone after it hung up.
  static constexpr std::chrono::milliseconds kPortRest{500};

  bool IsOver() const {
    return interrupt::Signal() != 0 || OutputError() != 0 || Clock::now() >= end_ ||
           (options_.count != 0 && told_ >= options_.count);
  }

  // Returns false when the process has ended for good.
  bool TellEvents() {
    while (!IsOver()) {
      const std::optional<Event> event = process_->Take();
      if (!event) break;
      TellAndNote(*event);
    }
    if (!process_->IsOver()) return true;
    EndProcess();
    if (status_ != BoardWatcher::kPortAway) return false;
    if (!task_.port_returns) NotePortAway();
    next_start_ = Clock::now() + kPortRest;
    return true;
  }

  void EndProcess() {
    if (process_) status_ = process_->End();
    process_.reset();
  }

  void NotePortAway() {
    task_.port_returns = true;
    Say("the MCU's port hung up; waiting for it to come back");
    if (!mcu_is_silent_) TellAndNote({.kind = EventKind::kMcuSilent, .time = TimeStamp()});
  }

  void TellAndNote(const Event& event) {
    if (event.kind == EventKind::kMcuBack && task_.port_returns) Say("the MCU's port is back");
    Tell(event, task_.common.json);
    commands_.Start(event);
    if (event.kind != EventKind::kState) ++told_;
    switch (event.kind) {
      case EventKind::kMcuSilent:
        mcu_is_silent_ = true;
        break;
      case EventKind::kMcuBack:
        mcu_is_silent_ = false;
        task_.port_returns = false;
        break;
      case EventKind::kIgnitionOn:
      case EventKind::kIgnitionOff:
        task_.told.ignition = event.kind == EventKind::kIgnitionOn;
        break;
      default:
        if (event.values.contains("ignition")) task_.told.ignition = event.values["ignition"].get<bool>();
        if (event.values.contains("volts")) task_.told.volts = event.values["volts"].get<double>();
    }
  }

  // Looks twice a second for commands that have ended.
  void Wait() {
    constexpr std::chrono::milliseconds kLongest{500};
    const auto wait = std::min(kLongest, std::chrono::ceil<std::chrono::milliseconds>(end_ - Clock::now()));
    pollfd descriptors[] = {{process_ ? process_->Descriptor() : -1, POLLIN, 0},
                            {interrupt::Descriptor(), POLLIN, 0}};
    poll(descriptors, 2, static_cast<int>(std::max<std::int64_t>(wait.count(), 0)));
  }

  const WatchOptions& options_;
  EventCommands commands_;
  WatchTask task_;  // for the next process
  std::optional<BoardWatcher> process_;
  int status_ = kDone;  // the exit status of the last process
  const Clock::time_point end_ =
      options_.time.count() == 0 ? Clock::time_point::max() : Clock::now() + options_.time;
  Clock::time_point next_start_{};
  unsigned told_ = 0;
  bool mcu_is_silent_ = false;
};

std::string EventList() {
  std::string list;
  for (const EventName& event : EventNames()) list += fmt::format("  {:<20}{}\n", event.name, event.words);
  return list;
}

}  // namespace

void AddWatchCommand(CLI::App& app, Invocation& invocation) {
  auto options = std::make_shared<WatchOptions>();
  CLI::App* const command = NewCommand(
      app, "watch", "Tell alarms, warnings, ignition and voltage as they change, until Ctrl-C",
      "  rolu watch\n"
      "  rolu watch --json --for 20s\n"
      "  rolu watch --on power-off-ignition 'systemctl poweroff' --on shock 'logger shock'\n"
      "\nEvents:\n" +
          EventList() +
          "\nThe G-sensor and its alarm are on meanwhile. A command of --on runs beside the watching, with\n"
          "ROLU_EVENT and ROLU_TIME in its environment and its output on standard error. The watching\n"
          "goes on when the MCU falls silent or its port hangs up. Once the port is back, it tells what\n"
          "has changed.");
  command->add_option("--on", options->commands, "Run COMMAND in a shell at each EVENT; may be repeated")
      ->type_name("EVENT COMMAND");
  command->add_option("--count", options->count, "End after so many events")
      ->check(CLI::Range(1U, std::numeric_limits<unsigned>::max()));
  AddDurationOption(*command, "--for", options->time, "End after this time, like 20s");
  AddDurationOption(*command, "--interval", options->task.interval,
                    "Time between two looks at ignition and voltage");
  command
      ->add_option("--step", options->task.volts_step, "The smallest change of the voltage to tell, in volts")
      ->check(CLI::Range(0.001, 100.0))
      ->capture_default_str();
  OnRun(command, invocation,
        [options](const CommonOptions& common) { return Watch(*options, common).Run(); });
}

}  // namespace rolu
