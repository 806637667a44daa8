#include <fmt/format.h>

#include "cli/command_line.h"
#include "cli/messages.h"
#include "tools/change.h"
#include "tools/command.h"
#include "tools/guard.h"
#include "tools/interrupt.h"
#include "tools/report.h"
#include "tools/session.h"
#include "tools/status_words.h"

namespace rolu {
namespace {

using Clock = std::chrono::steady_clock;

struct WatchdogOptions {
  unsigned time = 0;  // 0: leave it unchanged
  bool feed = false;
  std::chrono::milliseconds every{500};
  std::chrono::milliseconds duration{0};  // 0: until a signal
};

// `feeding` is the outcome of feeding for a time, if there was one.
void Tell(const CommonOptions& common, const char* state, const Outcome* feeding = nullptr) {
  Document line = {{"watchdog", state}};
  if (feeding != nullptr) line["fed"] = feeding->done();
  if (common.json) return PrintJsonLine(line);
  OutNow(fmt::format("{}the watchdog is {}\n",
                     feeding == nullptr ? "" : fmt::format("fed {} times; ", feeding->done()), state));
}

// A lost answer now and then does not end the feeding.
Outcome FeedUntilEnd(const WatchdogOptions& options) {
  const Clock::time_point start = Clock::now();
  Outcome feeding;
  while (true) {
    const ROLU_STATUS status = KAVO_ROLU_WD_Trigger();
    guard::NoteAnswer();
    feeding.Add(WordsOf(status).exit_status);
    if (status != ROLU_STATUS_SUCCESS) SayProblem("could not feed the watchdog: " + Describe(status));
    const bool is_over = options.duration.count() > 0 && Clock::now() - start >= options.duration;
    if (is_over || !interrupt::SleepFor(options.every)) return feeding;
  }
}

void SetTime(Session& session, unsigned time) {
  Change change{.setting = &SettingNamed("watchdog.time"), .wanted = time};
  Apply(session, change);
  if (!change.problem.empty()) {
    throw CommandError(change.result, fmt::format("watchdog.time = {} {}", time, change.problem));
  }
}

ExitStatus RunOn(const WatchdogOptions& options, const CommonOptions& common) {
  if (!options.feed) {
    Confirm(common, {"lets the watchdog reset the computer unless some program feeds it from now on"});
  }
  Session session(common);
  session.Require(Family::kWatchdog);
  if (options.time > 0) SetTime(session, options.time);
  guard::SetLastWords("the watchdog may be on, and nobody feeds it");
  ThrowUnlessDone(KAVO_ROLU_WD_Enabled(true), "switch the watchdog on");
  Tell(common, "on");
  if (!options.feed) return kDone;
  const Outcome feeding = FeedUntilEnd(options);
  // From here on nobody feeds the watchdog.
  ThrowUnlessDone(KAVO_ROLU_WD_Enabled(false), "switch the watchdog off again");
  Tell(common, "off", &feeding);
  return feeding.Result();
}

ExitStatus RunOff(const CommonOptions& common) {
  Confirm(common, {"switches the watchdog off, which guards the computer against hanging"});
  Session session(common);
  session.Require(Family::kWatchdog);
  ThrowUnlessDone(KAVO_ROLU_WD_Enabled(false), "switch the watchdog off");
  Tell(common, "off");
  return kDone;
}

ExitStatus RunShow(const CommonOptions& common) {
  Session session(common);
  const ExitStatus status = ReadAndPrint(session, "watchdog.time", common);
  if (!common.json) Out("The board does not tell whether the watchdog is on.\n");
  return status;
}

ExitStatus RunFeed(const WatchdogOptions& options, const CommonOptions& common) {
  Session session(common);
  session.Require(Family::kWatchdog);
  if (options.duration.count() > 0) {
    const Outcome feeding = FeedUntilEnd(options);
    Tell(common, "as it was", &feeding);
    return feeding.Result();
  }
  ThrowUnlessDone(KAVO_ROLU_WD_Trigger(), "feed the watchdog");
  Tell(common, "fed");
  return kDone;
}

}  // namespace

void AddWatchdogCommand(CLI::App& app, Invocation& invocation) {
  auto options = std::make_shared<WatchdogOptions>();
  CLI::App* const watchdog =
      NewCommand(app, "watchdog", "Switch the watchdog on and off, and feed it",
                 "  rolu watchdog on --time 60 --feed\n  rolu watchdog feed\n  rolu watchdog off\n"
                 "'rolu get watchdog.time' tells its time. The board does not tell whether it is on.");
  OnBareRun(watchdog, invocation, RunShow);

  CLI::App* const on =
      NewCommand(*watchdog, "on", "Switch the watchdog on",
                 "  rolu watchdog on --time 60 --feed\n"
                 "A watchdog that is on resets the computer unless it is fed. With --feed this\n"
                 "program feeds it until Ctrl-C, and switches it off at its end.");
  on->add_option("--time", options->time, "The time in which it must be fed, 1 to 65535 MCU units")
      ->check(CLI::Range(1, 65535));
  on->add_flag("--feed", options->feed, "Feed it until Ctrl-C, then switch it off");
  AddDurationOption(*on, "--every", options->every, "Time between two feedings, 500ms unless given");
  AddDurationOption(*on, "--for", options->duration, "With --feed: end after this time");
  OnRun(on, invocation, RunOn, options);

  OnRun(NewCommand(*watchdog, "off", "Switch the watchdog off", ""), invocation, RunOff);

  CLI::App* const feed = NewCommand(*watchdog, "feed", "Feed the watchdog once, or for a time",
                                    "  rolu watchdog feed\n  rolu watchdog feed --for 10min --every 1s");
  AddDurationOption(*feed, "--for", options->duration, "Feed it again and again for this time");
  AddDurationOption(*feed, "--every", options->every, "Time between two feedings, 500ms unless given");
  OnRun(feed, invocation, RunFeed, options);
}

}  // namespace rolu
