#include <fmt/format.h>

#include <array>

#include "cli/nearest_name.h"
#include "tools/command.h"
#include "tools/report.h"
#include "tools/status_words.h"

namespace rolu {
namespace {

constexpr std::array<std::string_view, 7> kDays = {"sunday",   "monday", "tuesday", "wednesday",
                                                   "thursday", "friday", "saturday"};

struct AlarmOptions {
  std::string day;
  std::string time;
};

// "07:30"; an hourly alarm also takes "30" or ":30".
VPM_ALARM_TIME ParseTime(const std::string& text, ALARM_MODE mode) {
  const bool is_hourly = mode == ALARM_MODE_HOURLY;
  const char* const hour = !is_hourly ? "" : text.size() == 2 ? "00:" : "00";
  const std::optional<TimeOfDay> time = ParseTimeOfDay(hour + text);
  if (time) return {.weekday = 0, .hour = time->hour, .minute = time->minute};
  throw CommandError(kWrongUse,
                     fmt::format("the alarm's time must be {}, not \"{}\"",
                                 is_hourly ? "a minute from 00 to 59" : "a time from 00:00 to 23:59", text));
}

// A number, the name of a day, or the first three letters of the name.
std::uint8_t ParseDay(const std::string& text) {
  for (std::size_t day = 0; day < kDays.size(); ++day) {
    const bool is_number = text.size() == 1 && text[0] == static_cast<char>('0' + day);
    if (is_number || text == kDays[day] || text == kDays[day].substr(0, 3))
      return static_cast<std::uint8_t>(day);
  }
  const std::vector<std::string> known(kDays.begin(), kDays.end());
  throw CommandError(kWrongUse, fmt::format("there is no day \"{}\"{} (0 to 6 or sunday to saturday)", text,
                                            Suggestion(text, known)));
}

// The MCU's clock compares only the fields that the mode names; the others stay 0.
void CheckReadBack(ALARM_MODE mode, const VPM_ALARM_TIME& time) {
  ALARM_MODE mode_now = ALARM_MODE_NONE;
  VPM_ALARM_TIME now{};
  ThrowUnlessDone(KAVO_ROLU_VPM_GetAlarmTime(&mode_now, &now), "read the alarm back", Act::kRead);
  char active = 0;
  ThrowUnlessDone(KAVO_ROLU_VPM_GetAlarmActive(&active), "read the alarm back", Act::kRead);
  const bool same = mode_now == mode && now.minute == time.minute && now.hour == time.hour &&
                    now.weekday == time.weekday && active != 0;
  if (!same)
    throw CommandError(kRefused, "the alarm was set, but reads back differently; see 'rolu alarm show'");
}

template <ALARM_MODE mode>
ExitStatus SetAlarm(const AlarmOptions& options, const CommonOptions& common) {
  VPM_ALARM_TIME time = ParseTime(options.time, mode);
  if (mode == ALARM_MODE_WEEKLY) time.weekday = ParseDay(options.day);
  Session session(common);
  session.Require(Family::kVpm);
  ThrowUnlessDone(KAVO_ROLU_VPM_SetAlarmTime(mode, time), "set the alarm");
  ThrowUnlessDone(KAVO_ROLU_VPM_SetAlarmActive(1), "switch the alarm on");
  CheckReadBack(mode, time);
  return ReadAndPrint(session, "alarm", common);
}

ExitStatus SwitchOff(const CommonOptions& common) {
  Session session(common);
  session.Require(Family::kVpm);
  ThrowUnlessDone(KAVO_ROLU_VPM_SetAlarmActive(0), "switch the alarm off");
  return ReadAndPrint(session, "alarm", common);
}

ExitStatus Show(const CommonOptions& common) {
  Session session(common);
  session.Require(Family::kVpm);
  return ReadAndPrint(session, "alarm", common);
}

}  // namespace

void AddAlarmCommand(CLI::App& app, Invocation& invocation) {
  auto options = std::make_shared<AlarmOptions>();
  CLI::App* const alarm = NewCommand(app, "alarm", "Show, set and switch off the wake-up alarm",
                                     "  rolu alarm daily 07:30\n  rolu alarm hourly 15\n"
                                     "  rolu alarm weekly monday 06:00\n  rolu alarm off");
  OnBareRun(alarm, invocation, Show);

  OnRun(NewCommand(*alarm, "show", "Show the alarm", ""), invocation, Show);

  CLI::App* const hourly =
      NewCommand(*alarm, "hourly", "Wake the computer each hour", "  rolu alarm hourly 15");
  hourly->add_option("MINUTE", options->time, "00 to 59")->required();
  OnRun(hourly, invocation, SetAlarm<ALARM_MODE_HOURLY>, options);

  CLI::App* const daily =
      NewCommand(*alarm, "daily", "Wake the computer each day", "  rolu alarm daily 07:30");
  daily->add_option("TIME", options->time, "HH:MM, in the time of the MCU's clock")->required();
  OnRun(daily, invocation, SetAlarm<ALARM_MODE_DAILY>, options);

  CLI::App* const weekly =
      NewCommand(*alarm, "weekly", "Wake the computer once a week", "  rolu alarm weekly monday 06:00");
  weekly->add_option("DAY", options->day, "sunday to saturday, or 0 to 6 in the MCU's counting (sunday is 0)")
      ->required();
  weekly->add_option("TIME", options->time, "HH:MM, in the time of the MCU's clock")->required();
  OnRun(weekly, invocation, SetAlarm<ALARM_MODE_WEEKLY>, options);

  OnRun(NewCommand(*alarm, "off", "Switch the alarm off; its time stays", ""), invocation, SwitchOff);
}

}  // namespace rolu
