#include <fmt/chrono.h>
#include <fmt/format.h>
#include <time.h>

#include "tools/command.h"
#include "tools/interrupt.h"
#include "tools/report.h"
#include "tools/session.h"
#include "tools/status_words.h"

namespace rolu {
namespace {

// How far the clock may run on between the setting and the reading back.
constexpr long kRunOnSeconds = 2;

struct ClockOptions {
  bool utc = false;
  std::string time;
  int weekday = -1;  // negative: computed from the date
};

VPM_RTC_TIME ClockOf(const std::tm& fields) {
  const auto byte = [](int number) { return static_cast<std::uint8_t>(number); };
  return {byte(fields.tm_year % 100), byte(fields.tm_mon + 1), byte(fields.tm_mday), byte(fields.tm_wday),
          byte(fields.tm_hour),       byte(fields.tm_min),     byte(fields.tm_sec)};
}

// A date and time, "2026-11-24 21:38:15" or with a T in between. The weekday is computed (Sunday is 0).
VPM_RTC_TIME ParseClock(const std::string& text) {
  std::string given = text;
  if (const std::size_t mark = given.find('T'); mark != std::string::npos) given[mark] = ' ';
  std::tm fields{};
  const bool is_read = strptime(given.c_str(), "%Y-%m-%d %H:%M:%S", &fields) != nullptr;
  // timegm turns the 31st of April into the 1st of May, and strptime takes "7:3" for 07:03. So the text is
  // written again and compared.
  timegm(&fields);
  const VPM_RTC_TIME time = ClockOf(fields);
  if (is_read && ClockText(time) == given) return time;
  throw CommandError(kWrongUse,
                     fmt::format("the time must be a time that exists, from the years 2000 to 2099, "
                                 "like \"2026-11-24 21:38:15\", not \"{}\"",
                                 text));
}

VPM_RTC_TIME SystemClock(bool utc) {
  const std::time_t now = time(nullptr);
  return ClockOf(utc ? fmt::gmtime(now) : fmt::localtime(now));
}

// Negative when `to` is earlier.
long SecondsBetween(const VPM_RTC_TIME& from, const VPM_RTC_TIME& to) {
  const auto seconds = [](const VPM_RTC_TIME& time) {
    std::tm fields{};
    fields.tm_year = 100 + time.year;
    fields.tm_mon = time.month - 1;
    fields.tm_mday = time.day;
    fields.tm_hour = time.hour;
    fields.tm_min = time.minute;
    fields.tm_sec = time.second;
    return timegm(&fields);
  };
  return static_cast<long>(seconds(to) - seconds(from));
}

VPM_RTC_TIME ReadClock() {
  VPM_RTC_TIME time{};
  ThrowUnlessDone(KAVO_ROLU_VPM_GetRTCTime(&time), "read the clock");
  return time;
}

ExitStatus PrintClock(const VPM_RTC_TIME& time, const ClockOptions& options, const CommonOptions& common) {
  const long ahead = SecondsBetween(SystemClock(options.utc), time);
  Report report;
  report.AddValue("clock.time", ClockText(time), ClockText(time));
  report.AddValue("clock.weekday", time.weekday, std::to_string(time.weekday));
  report.AddValue("clock.ahead-of-system", ahead, std::to_string(ahead), "s");
  report.Print(common.json);
  return kDone;
}

ExitStatus RunShow(const ClockOptions& options, const CommonOptions& common) {
  Session session(common);
  session.Require(Family::kVpm);
  return PrintClock(ReadClock(), options, common);
}

void SetAndCompare(const VPM_RTC_TIME& time) {
  ThrowUnlessDone(KAVO_ROLU_VPM_SetRTCTime(time), "set the clock");
  const VPM_RTC_TIME now = ReadClock();
  const long run_on = SecondsBetween(time, now);
  if (run_on >= 0 && run_on <= kRunOnSeconds && now.weekday == time.weekday) return;
  throw CommandError(kRefused, fmt::format("the clock was set to {}, but reads back as {}, weekday {}",
                                           ClockText(time), ClockText(now), now.weekday));
}

ExitStatus RunSetClock(const ClockOptions& options, const CommonOptions& common) {
  VPM_RTC_TIME time = ParseClock(options.time);
  if (options.weekday >= 0) time.weekday = static_cast<std::uint8_t>(options.weekday);
  Session session(common);
  session.Require(Family::kVpm);
  SetAndCompare(time);
  return PrintClock(ReadClock(), options, common);
}

// The MCU's clock counts whole seconds, so it is set when a second begins.
VPM_RTC_TIME NextSecond(bool utc) {
  using std::chrono::milliseconds;
  const auto now = std::chrono::system_clock::now().time_since_epoch();
  const auto into_second = std::chrono::duration_cast<milliseconds>(now) % 1000;
  if (!interrupt::SleepFor(milliseconds(1000) - into_second)) interrupt::ThrowIfRequested();
  return SystemClock(utc);
}

ExitStatus RunSync(const ClockOptions& options, const CommonOptions& common) {
  Session session(common);
  session.Require(Family::kVpm);
  SetAndCompare(NextSecond(options.utc));
  return PrintClock(ReadClock(), options, common);
}

void AddUtcFlag(CLI::App* command, ClockOptions& options) {
  command->add_flag("--utc", options.utc, "The MCU's clock runs in UTC, not in local time");
}

}  // namespace

void AddClockCommand(CLI::App& app, Invocation& invocation) {
  auto options = std::make_shared<ClockOptions>();
  CLI::App* const clock =
      NewCommand(app, "clock", "Show and set the MCU's clock",
                 "  rolu clock show\n  rolu clock set '2026-11-24 21:38:15'\n  rolu clock sync --utc");
  clock->require_subcommand(1);

  CLI::App* const show =
      NewCommand(*clock, "show", "Show the clock and how far it is ahead of the system's", "");
  AddUtcFlag(show, *options);
  OnRun(show, invocation, RunShow, options);

  CLI::App* const set =
      NewCommand(*clock, "set", "Set the clock to a time", "  rolu clock set '2026-11-24 21:38:15'");
  set->add_option("TIME", options->time, "Like '2026-11-24 21:38:15', from 2000 to 2099")->required();
  set->add_option("--weekday", options->weekday,
                  "0 to 6 as the MCU counts; if not given, from the date (Sunday is 0)")
      ->check(CLI::Range(0, 6));
  AddUtcFlag(set, *options);
  OnRun(set, invocation, RunSetClock, options);

  CLI::App* const sync =
      NewCommand(*clock, "sync", "Set the clock to the system's time", "  rolu clock sync");
  AddUtcFlag(sync, *options);
  OnRun(sync, invocation, RunSync, options);
}

}  // namespace rolu
