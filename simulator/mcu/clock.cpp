#include "simulator/mcu/clock.h"

#include <array>
#include <chrono>
#include <cstddef>
#include <string>

#include "simulator/mcu/mcu_model.h"

namespace rolu_sim {
namespace {

// The order of the fields on the wire.
constexpr std::array<std::uint8_t ClockTime::*, 7> kFields = {
    &ClockTime::year, &ClockTime::month,  &ClockTime::day,   &ClockTime::weekday,
    &ClockTime::hour, &ClockTime::minute, &ClockTime::second};

constexpr unsigned kMatchFlag = 0x01;
constexpr unsigned kAfternoonFlag = 0x02;  // of the hour's byte only, in the place of its weight 40

constexpr int kMinutesPerHour = 60;
constexpr int kMinutesPerDay = 24 * kMinutesPerHour;
constexpr int kMinutesPerWeek = 7 * kMinutesPerDay;

std::optional<ClockTime> ParseTime(std::string_view fields) {
  ClockTime time;
  for (std::size_t index = 0; index < kFields.size(); ++index) {
    const std::optional<std::uint16_t> number = ParseHex(fields.substr(2 * index, 2));
    if (!number) return std::nullopt;
    time.*kFields[index] = static_cast<std::uint8_t>(*number);
  }
  if (!IsValid(time)) return std::nullopt;
  return time;
}

// The first line says that the command has arrived, the second what became of it.
AnswerLines WriteTime(McuModel& model, std::string_view fields, TimePoint now) {
  const std::optional<ClockTime> time = ParseTime(fields);
  if (!time) return {"OK", std::string(kRefusedParameterReply)};
  model.clock.Set(*time, now);
  return {"OK", "OK"};
}

AnswerLines ReadTime(McuModel& model, std::string_view /*fields*/, TimePoint now) {
  const ClockTime time = model.clock.TimeAt(now);
  std::string line;
  for (const auto field : kFields) line += FormatHex(time.*field, 2);
  return {line};
}

unsigned ReverseBits(unsigned byte) {
  unsigned reversed = 0;
  for (unsigned bit = 0; bit < 8; ++bit) reversed |= (byte >> bit & 1U) << (7U - bit);
  return reversed;
}

// An alarm field is a BCD byte with the order of its bits reversed; its flags sit where the tens have
// no use for a bit.
std::optional<std::uint8_t> ParseAlarmValue(unsigned byte, unsigned flags, unsigned highest) {
  const unsigned bcd = ReverseBits(byte & ~flags);
  const unsigned value = bcd / 16 * 10 + bcd % 16;
  if (bcd % 16 > 9 || value > highest) return std::nullopt;
  return static_cast<std::uint8_t>(value);
}

std::string FormatAlarmValue(unsigned value, unsigned flags) {
  return FormatHex(static_cast<std::uint16_t>(ReverseBits(value / 10 * 16 + value % 10) | flags), 2);
}

unsigned MatchFlag(bool match) {
  return match ? kMatchFlag : 0U;
}

AnswerLines WriteAlarm(McuModel& model, std::string_view fields, TimePoint /*now*/) {
  const std::optional<std::uint16_t> weekday_byte = ParseHex(fields.substr(0, 2));
  const std::optional<std::uint16_t> hour_byte = ParseHex(fields.substr(2, 2));
  const std::optional<std::uint16_t> minute_byte = ParseHex(fields.substr(4, 2));
  if (!weekday_byte || !hour_byte || !minute_byte) return RefuseParameter();
  const std::optional<std::uint8_t> weekday = ParseAlarmValue(*weekday_byte, kMatchFlag, 6);
  const std::optional<std::uint8_t> hour = ParseAlarmValue(*hour_byte, kMatchFlag | kAfternoonFlag, 23);
  const std::optional<std::uint8_t> minute = ParseAlarmValue(*minute_byte, kMatchFlag, 59);
  if (!weekday || !hour || !minute) return RefuseParameter();
  const auto matches = [](unsigned byte) { return (byte & kMatchFlag) != 0; };
  model.clock.alarm = {
      *weekday, *hour, *minute, matches(*weekday_byte), matches(*hour_byte), matches(*minute_byte)};
  return AnswerOk();
}

AnswerLines ReadAlarm(McuModel& model, std::string_view /*fields*/, TimePoint /*now*/) {
  const AlarmSetting& alarm = model.clock.alarm;
  const unsigned afternoon = alarm.hour >= 12 ? kAfternoonFlag : 0U;
  return {FormatAlarmValue(alarm.weekday, MatchFlag(alarm.match_weekday)) +
          FormatAlarmValue(alarm.hour, MatchFlag(alarm.match_hour) | afternoon) +
          FormatAlarmValue(alarm.minute, MatchFlag(alarm.match_minute))};
}

}  // namespace

void ClockState::Set(const ClockTime& time, TimePoint now) {
  set_time_ = time;
  set_at_ = now;
}

ClockTime ClockState::TimeAt(TimePoint now) const {
  return AddSeconds(set_time_, std::chrono::floor<std::chrono::seconds>(now - set_at_).count());
}

std::optional<TimePoint> ClockState::NextAlarm(TimePoint after) const {
  if (!alarm.match_weekday && !alarm.match_hour && !alarm.match_minute) return std::nullopt;
  const ClockTime start = TimeAt(after);
  const int start_minute = start.weekday * kMinutesPerDay + start.hour * kMinutesPerHour + start.minute;
  int minute = start_minute + 1;
  while (minute <= start_minute + kMinutesPerWeek) {
    // What does not match cannot match before its unit has passed.
    if (alarm.match_weekday && minute / kMinutesPerDay % 7 != alarm.weekday) {
      minute += kMinutesPerDay - minute % kMinutesPerDay;
    } else if (alarm.match_hour && minute / kMinutesPerHour % 24 != alarm.hour) {
      minute += kMinutesPerHour - minute % kMinutesPerHour;
    } else if (alarm.match_minute && minute % kMinutesPerHour != alarm.minute) {
      ++minute;
    } else {
      const auto second = set_at_ + std::chrono::floor<std::chrono::seconds>(after - set_at_);
      return second - std::chrono::seconds(start.second) + std::chrono::minutes(minute - start_minute);
    }
  }
  return std::nullopt;
}

std::vector<McuCommand> ClockCommands() {
  return {
      {"RTCS", 14, 14, WriteTime},
      {"RTCG", 0, 0, ReadTime},
      {"RTAS", 6, 6, WriteAlarm},
      {"RTAG", 0, 0, ReadAlarm},
  };
}

}  // namespace rolu_sim
