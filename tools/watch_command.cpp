#include <errno.h>
#include <fmt/format.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <exception>
#include <limits>
#include <optional>
#include <system_error>

#include "cli/command_line.h"
#include "cli/messages.h"
#include "tools/board_watcher.h"
#include "tools/command.h"
#include "tools/command_error.h"
#include "tools/event_commands.h"
#include "tools/interrupt.h"
#include "tools/output.h"
#include "tools/port_owner.h"
#include "tools/session.h"
#include "tools/status_words.h"
#include "tools/wall_time.h"

namespace rolu {
namespace {

using Clock = std::chrono::steady_clock;

struct WatchOptions {
  std::vector<std::pair<std::string, std::string>> commands;
  unsigned count = 0;
  std::chrono::milliseconds time{0};
  WatchSettings settings;
};

const EventName& NameOf(EventKind kind) {
  static const EventName state = {EventKind::kState, "state", "watching"};
  for (const EventName& event : EventNames()) {
    if (event.kind == kind) return event;
  }
  return state;
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

struct WatchTask {
  WatchSettings settings;
  CommonOptions common;
  BoardState told;            // what has been told before
  bool port_returns = false;  // the port hung up under the process before this one
};

// The exit status of a process whose port hung up, or has not come back yet. No command ends with it.
inline constexpr int kPortAway = 64;

// Comes back when an end is asked for: by a signal, or by the reader of the events, who goes away.
void WatchUntilAsked(const EventPipe& events) {
  pollfd ends[] = {
      {events.Descriptor(), 0, 0}, {interrupt::Descriptor(), POLLIN, 0}, {DuplicateOwnPort(), 0, 0}};
  while (poll(ends, 3, -1) < 0 && errno == EINTR) continue;
  // What was up has gone with the port: nothing is left to be taken down.
  if (ends[2].revents != 0) _exit(kPortAway);
}

ExitStatus WatchBoard(const WatchTask& task, EventPipe& events) {
  BoardWatcher watcher(events, task.settings, task.told);
  Session session(task.common);
  session.Require(Family::kVpm);
  session.Require(Family::kGsensor);
  if (task.port_returns) events.Put(EventKind::kMcuBack);
  const ROLU_STATUS alarm = watcher.Start();
  if (alarm != ROLU_STATUS_SUCCESS) Say("G-sensor alarms are not watched: " + Describe(alarm));
  WatchUntilAsked(events);
  watcher.Stop();
  return session.Close();
}

int WatchAsProcess(const WatchTask& task, EventPipe& events) {
  try {
    return WatchBoard(task, events);
  } catch (const CommandError& error) {
    if (task.port_returns) return kPortAway;
    SayProblem(error.what());
    return error.status();
  } catch (const std::exception& error) {
    SayProblem(error.what());
    return kPartlyDone;
  }
}

// A process of its own that uses the library, and sees what happens on the board. A port that hung up is
// dead for the process that opened it, and stays so: the library opens it again only when all families
// are down, and the G-sensor goes down only with the MCU's answer. Another process can take over.
class WatchProcess {
 public:
  // Call it while no other thread runs. Throws std::system_error.
  explicit WatchProcess(const WatchTask& task);
  ~WatchProcess() { End(); }
  WatchProcess(const WatchProcess&) = delete;
  WatchProcess& operator=(const WatchProcess&) = delete;

  EventPipe& events() { return *events_; }

  // Lets it take down what it brought up, after the question in hand, and gives its exit status.
  int End();

 private:
  std::optional<EventPipe> events_;
  pid_t pid_ = -1;
  int status_ = 0;
};

WatchProcess::WatchProcess(const WatchTask& task) {
  events_.emplace();
  pid_ = fork();
  if (pid_ < 0) throw std::system_error(errno, std::generic_category(), "fork");
  if (pid_ > 0) {
    events_->BeReader();
    return;
  }
  events_->BeWriter();
  interrupt::Watch();
  _exit(WatchAsProcess(task, *events_));
}

int WatchProcess::End() {
  if (pid_ < 0) return status_;
  events_.reset();
  int status = 0;
  while (waitpid(pid_, &status, 0) < 0 && errno == EINTR) continue;
  pid_ = -1;
  status_ = WEXITSTATUS(status);
  if (WIFSIGNALED(status)) {
    SayProblem(fmt::format("the process that watches was ended by signal {}", WTERMSIG(status)));
    status_ = kSignalBase + WTERMSIG(status);
  }
  return status_;
}

// Tells what a process of its own sees, and lets another take over where the port hung up.
class Watch {
 public:
  Watch(const WatchOptions& options, const CommonOptions& common)
      : options_(options), commands_(options.commands), task_{options.settings, common, {}, false} {}

  ExitStatus Run() {
    bool goes_on = true;
    while (goes_on && !IsOver()) {
      if (!process_ && Clock::now() >= next_start_) process_.emplace(task_);
      if (process_) goes_on = TellEvents();
      commands_.Reap();
      if (goes_on) Wait();
    }
    EndProcess();
    if (status_ == kPortAway) {
      SayProblem("could not take down the G-sensor: the MCU's port hung up");
      status_ = kNoAnswer;
    }
    commands_.WaitForEnd();
    return static_cast<ExitStatus>(status_);
  }

 private:
  // How long a port that hung up is left alone before it is tried again.
  static constexpr std::chrono::milliseconds kPortRest{500};

  bool IsOver() const {
    return interrupt::Signal() != 0 || OutputError() != 0 || Clock::now() >= end_ ||
           (options_.count != 0 && told_ >= options_.count);
  }

  // False when the process has ended for good.
  bool TellEvents() {
    while (!IsOver()) {
      const std::optional<Event> event = process_->events().Take();
      if (!event) break;
      TellAndNote(*event);
    }
    if (!process_->events().IsAtEnd()) return true;
    EndProcess();
    if (status_ != kPortAway) return false;
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
    if (!mcu_is_silent_) TellAndNote({EventKind::kMcuSilent, Document::object(), "", TimeStamp()});
  }

  void TellAndNote(const Event& event) {
    if (event.kind == EventKind::kMcuBack && task_.port_returns) Say("the MCU's port is back");
    Tell(event, task_.common.json);
    commands_.Start(event, NameOf(event.kind).name);
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

  // Commands that have ended are looked for twice a second.
  void Wait() {
    constexpr std::chrono::milliseconds kLongest{500};
    const auto wait = std::min(kLongest, std::chrono::ceil<std::chrono::milliseconds>(end_ - Clock::now()));
    pollfd descriptors[] = {{process_ ? process_->events().Descriptor() : -1, POLLIN, 0},
                            {interrupt::Descriptor(), POLLIN, 0}};
    poll(descriptors, 2, static_cast<int>(std::max<std::int64_t>(wait.count(), 0)));
  }

  const WatchOptions& options_;
  EventCommands commands_;
  WatchTask task_;  // of the next process
  std::optional<WatchProcess> process_;
  int status_ = kDone;  // of the last one
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
  AddDurationOption(*command, "--interval", options->settings.interval,
                    "Time between two looks at ignition and voltage");
  command
      ->add_option("--step", options->settings.volts_step,
                   "The smallest change of the voltage to tell, in volts")
      ->check(CLI::Range(0.001, 100.0))
      ->capture_default_str();
  OnRun(command, invocation,
        [options](const CommonOptions& common) { return Watch(*options, common).Run(); });
}

}  // namespace rolu
