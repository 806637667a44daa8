#include <fmt/format.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <limits>
#include <optional>

#include "tools/board_watcher.h"
#include "tools/command.h"
#include "tools/event_commands.h"
#include "tools/interrupt.h"
#include "tools/messages.h"
#include "tools/output.h"
#include "tools/session.h"
#include "tools/status_words.h"

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

// The watching, whose parts end in the right order whatever ends it.
class Watch {
 public:
  Watch(const WatchOptions& options, const CommonOptions& common)
      : options_(options),
        common_(common),
        commands_(options.commands),
        watcher_(queue_, options.settings),
        session_(common) {}
  ~Watch() { Close(); }
  Watch(const Watch&) = delete;
  Watch& operator=(const Watch&) = delete;

  ExitStatus Run() {
    session_.Require(Family::kVpm);
    session_.Require(Family::kGsensor);
    const ROLU_STATUS alarm = watcher_.Start();
    if (alarm != ROLU_STATUS_SUCCESS) Say("G-sensor alarms are not watched: " + Describe(alarm));
    TellUntilEnd();
    const ExitStatus result = Close();
    commands_.WaitForEnd();
    return result;
  }

 private:
  void TellUntilEnd() {
    const Clock::time_point end =
        options_.time.count() == 0 ? Clock::time_point::max() : Clock::now() + options_.time;
    unsigned told = 0;
    while (interrupt::Signal() == 0 && OutputError() == 0) {
      while (const std::optional<Event> event = queue_.Take()) {
        Tell(*event, common_.json);
        commands_.Start(*event, NameOf(event->kind).name);
        if (event->kind != EventKind::kState && ++told == options_.count) return;
      }
      commands_.Reap();
      if (Clock::now() >= end) return;
      WaitForEvent(end);
    }
  }

  // Commands that have ended are looked for twice a second.
  void WaitForEvent(Clock::time_point end) const {
    constexpr std::chrono::milliseconds kLongest{500};
    const auto wait = std::min(kLongest, std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now()));
    pollfd descriptors[] = {{queue_.Descriptor(), POLLIN, 0}, {interrupt::Descriptor(), POLLIN, 0}};
    poll(descriptors, 2, static_cast<int>(std::max<std::int64_t>(wait.count(), 0)));
  }

  ExitStatus Close() {
    watcher_.Stop();
    return session_.Close();
  }

  const WatchOptions& options_;
  const CommonOptions& common_;
  EventCommands commands_;
  EventQueue queue_;
  BoardWatcher watcher_;
  Session session_;
};

std::string EventList() {
  std::string list;
  for (const EventName& event : EventNames()) list += fmt::format("  {:<20}{}\n", event.name, event.words);
  return list;
}

}  // namespace

void AddWatchCommand(CLI::App& app, Invocation& invocation) {
  auto options = std::make_shared<WatchOptions>();
  CLI::App* const command =
      NewCommand(app, "watch", "Tell alarms, warnings, ignition and voltage as they change, until Ctrl-C",
                 "  rolu watch\n"
                 "  rolu watch --json --for 20s\n"
                 "  rolu watch --on power-off-ignition 'systemctl poweroff' --on shock 'logger shock'\n"
                 "\nEvents:\n" +
                     EventList() +
                     "\nThe G-sensor is switched on meanwhile, with its alarm. A command of --on runs beside "
                     "the watching, with\n"
                     "ROLU_EVENT and ROLU_TIME in its environment and its output on standard error. An MCU "
                     "that falls silent\n"
                     "does not end the watching.");
  command->add_option("--on", options->commands, "Run COMMAND in a shell at each EVENT; may be repeated")
      ->type_name("EVENT COMMAND");
  command->add_option("--count", options->count, "End after so many events")
      ->check(CLI::Range(1U, std::numeric_limits<unsigned>::max()));
  AddDurationOption(command, "--for", options->time, "End after this time, like 20s");
  AddDurationOption(command, "--interval", options->settings.interval,
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
