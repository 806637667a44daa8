#include <fmt/chrono.h>
#include <fmt/format.h>
#include <time.h>

#include <algorithm>
#include <chrono>

#include "cli/messages.h"
#include "tools/command.h"
#include "tools/interrupt.h"
#include "tools/report.h"
#include "tools/session.h"
#include "tools/status_words.h"

namespace rolu {
namespace {

using SystemClock = std::chrono::system_clock;
using Microseconds = std::chrono::microseconds;

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

VPM_RTC_TIME ClockAt(SystemClock::time_point time, bool utc) {
  const std::time_t seconds = SystemClock::to_time_t(time);
  return ClockOf(utc ? fmt::gmtime(seconds) : fmt::localtime(seconds));
}

VPM_RTC_TIME ClockNow(bool utc) {
  return ClockAt(SystemClock::now(), utc);
}

// A date and time, "2026-11-24 21:38:15" or with a T in between. Without a date it is today; without seconds
// they are 0. The weekday is computed (Sunday is 0).
VPM_RTC_TIME ParseClock(const ClockOptions& options) {
  std::string given = options.time;
  if (const std::size_t mark = given.find('T'); mark != std::string::npos) given[mark] = ' ';
  if (given.find('-') == std::string::npos) {
    given = ClockText(ClockNow(options.utc)).substr(0, std::size("2026-11-24")) + given;
  }
  const std::size_t hour = given.find(' ') + 1;
  if (given.find(':') == hour + 1) given.insert(hour, "0");
  if (std::ranges::count(given, ':') == 1) given += ":00";
  std::tm fields{};
  const bool is_read = strptime(given.c_str(), "%Y-%m-%d %H:%M:%S", &fields) != nullptr;
  // timegm turns the 31st of April into the 1st of May, and strptime takes "7:3" for 07:03. So the text is
  // written again and compared.
  timegm(&fields);
  const VPM_RTC_TIME time = ClockOf(fields);
  if (is_read && ClockText(time) == given) return time;
  throw CommandError(kWrongUse,
                     fmt::format("the time must be a time that exists, from the years 2000 to 2099, "
                                 "like \"2026-11-24 21:38:15\" or \"7:30\" (today), not \"{}\"",
                                 options.time));
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
  ThrowUnlessDone(KAVO_ROLU_VPM_GetRTCTime(&time), "read the clock", Act::kRead);
  return time;
}

ExitStatus PrintClock(const VPM_RTC_TIME& time, const ClockOptions& options, const CommonOptions& common) {
  const long ahead = SecondsBetween(ClockNow(options.utc), time);
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

void SetClock(const VPM_RTC_TIME& time) {
  ThrowUnlessDone(KAVO_ROLU_VPM_SetRTCTime(time), "set the clock");
}

void CheckReadBack(const VPM_RTC_TIME& time) {
  const VPM_RTC_TIME now = ReadClock();
  const long run_on = SecondsBetween(time, now);
  if (run_on >= 0 && run_on <= kRunOnSeconds && now.weekday == time.weekday) return;
  throw CommandError(kRefused, fmt::format("the clock was set to {}, but reads back as {}, weekday {}",
                                           ClockText(time), ClockText(now), now.weekday));
}

ExitStatus RunSetClock(const ClockOptions& options, const CommonOptions& common) {
  VPM_RTC_TIME time = ParseClock(options);
  if (options.weekday >= 0) time.weekday = static_cast<std::uint8_t>(options.weekday);
  Session session(common);
  session.Require(Family::kVpm);
  SetClock(time);
  CheckReadBack(time);
  return PrintClock(ReadClock(), options, common);
}

// About how long a command takes to reach the MCU: half of the time that a question and its answer take. The
// shortest of some is the one that nothing disturbed.
Microseconds TimeToMcu() {
  Microseconds shortest = Microseconds::max();
  for (int asked = 0; asked < 3; ++asked) {
    const auto start = std::chrono::steady_clock::now();
    ReadClock();
    shortest = std::min(shortest,
                        std::chrono::duration_cast<Microseconds>(std::chrono::steady_clock::now() - start));
  }
  return shortest / 2;
}

// A time that was set, and how far the MCU's clock may be off.
struct ClockSetting {
  VPM_RTC_TIME time;
  Microseconds error;
};

// Sets the MCU's clock to the second that begins next, so that the MCU has the command at that moment: its
// clock counts whole seconds. It took the time at some moment between the sending and the answer.
ClockSetting SetAtNextSecond(bool utc, Microseconds lead) {
  constexpr Microseconds kPostDelay{50'000};  // the library's pause after the answer
  const auto second = std::chrono::ceil<std::chrono::seconds>(SystemClock::now() + lead);
  const auto sleep = std::chrono::floor<std::chrono::milliseconds>(second - lead - SystemClock::now());
  if (!interrupt::SleepFor(sleep)) interrupt::ThrowIfRequested();
  const VPM_RTC_TIME time = ClockAt(second, utc);
  const SystemClock::time_point sent = SystemClock::now();
  SetClock(time);
  const SystemClock::time_point answered = SystemClock::now() - kPostDelay;
  const auto error = std::max<SystemClock::duration>(second - sent, answered - second);
  return {time, std::chrono::duration_cast<Microseconds>(error)};
}

// A busy computer may run this program too late, so there are some attempts.
ExitStatus RunSync(const ClockOptions& options, const CommonOptions& common) {
  constexpr Microseconds kLargestError{50'000};
  constexpr int kAttempts = 5;
  Session session(common);
  session.Require(Family::kVpm);
  const Microseconds lead = TimeToMcu();
  ClockSetting set = SetAtNextSecond(options.utc, lead);
  for (int attempt = 1; attempt < kAttempts && set.error > kLargestError; ++attempt) {
    set = SetAtNextSecond(options.utc, lead);
  }
  CheckReadBack(set.time);
  PrintClock(ReadClock(), options, common);
  if (set.error <= kLargestError) return kDone;
  SayProblem(fmt::format("the clock may be off by {} ms: the computer is busy, or the MCU answers slowly",
                         set.error.count() / 1000));
  return kPartlyDone;
}

void AddUtcFlag(CLI::App* command, ClockOptions& options) {
  command->add_flag("--utc", options.utc, "The MCU's clock runs in UTC, not in local time");
}

}  // namespace

void AddClockCommand(CLI::App& app, Invocation& invocation) {
  auto options = std::make_shared<ClockOptions>();
  CLI::App* const clock =
      NewCommand(app, "clock", "Show and set the MCU's clock",
                 "  rolu clock\n  rolu clock set '2026-11-24 21:38:15'\n  rolu clock sync --utc");
  AddUtcFlag(clock, *options);
  OnBareRun(clock, invocation, RunShow, options);

  CLI::App* const show =
      NewCommand(*clock, "show", "Show the clock and how far it is ahead of the system's", "");
  AddUtcFlag(show, *options);
  OnRun(show, invocation, RunShow, options);

  CLI::App* const set =
      NewCommand(*clock, "set", "Set the clock to a time", "  rolu clock set '2026-11-24 21:38:15'");
  set->add_option("TIME", options->time, "Like '2026-11-24 21:38:15', from 2000 to 2099, or 7:30 of today")
      ->required();
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
