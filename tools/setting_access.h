#pragma once

// How the rows of the table call the library: readers and writers made from its typed getters and setters.

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <string>
#include <type_traits>
#include <utility>

#include "kavo_rolu.h"
#include "tools/setting.h"

namespace rolu::board_access {

// AsValue turns what the library gave into a value.

// The interface's `char` holds 0 to 255, whatever its sign on this machine.
inline Value AsValue(char raw) {
  return static_cast<unsigned char>(raw);
}
template <typename Raw>
requires(std::is_integral_v<Raw> || std::is_enum_v<Raw>) Value AsValue(Raw raw) {
  return static_cast<std::int64_t>(raw);
}
inline Value AsValue(float volts) {
  return Thousandths(volts);
}
inline Value AsValue(CAR_BATTERY_MODE mode) {
  return mode == CAR_BATTERY_MODE_24V ? "24V" : "12V";
}
inline Value AsValue(WAKEUP_SOURCE source) {
  if (source == WAKEUP_SOURCE_NONE) return "none";
  if (source == WAKEUP_SOURCE_RTC_ALARM) return "alarm";
  return fmt::format("source-{}", static_cast<int>(source));
}
inline Value AsValue(const VPM_RTC_TIME& time) {
  return ClockText(time);
}
inline Value AsValue(const ROLU_GSENSOR_DATA& sample) {
  return {sample.x, sample.y, sample.z};
}
inline Value AsValue(const BATTERY_INFO& info) {
  return {Thousandths(info.range_start), Thousandths(info.range_mid), Thousandths(info.range_end)};
}
// Takes the characters up to a NUL; those that do not print become '?'.
template <std::size_t Size>
Value AsValue(const std::array<char, Size>& text) {
  std::string printable(text.begin(), std::ranges::find(text, '\0'));
  std::ranges::replace_if(
      printable, [](char character) { return character < ' ' || character > '~'; }, '?');
  return printable;
}
inline Value AsValue(const VPM_FIRMWARE_INFO& info) {
  return AsValue(std::to_array(info.text));
}
inline Value Celsius(float raw) {
  return std::round(static_cast<double>(raw) * 10.0) / 10.0;
}
inline Value InfoNumber(const BACKUP_BATTERY_INFO& info) {
  return info.info_value;
}
inline Value SetFlags(const BACKUP_BATTERY_INFO& info) {
  const std::pair<int, std::uint8_t> flags[] = {
      {0, info.status_bit0},   {1, info.status_bit1},   {2, info.status_bit2},   {7, info.status_bit7},
      {8, info.status_bit8},   {9, info.status_bit9},   {10, info.status_bit10}, {11, info.status_bit11},
      {14, info.status_bit14}, {15, info.status_bit15},
  };
  Value bits = Value::array();
  for (const auto& [bit, set] : flags) {
    if (set != 0) bits.push_back(bit);
  }
  return bits;
}

// Calls `get` and turns its result into a value with `show`.
template <typename Raw, typename Get, typename Show>
Reader ReadAs(Get get, Show show) {
  return [=](Value& value) {
    Raw raw{};
    const ROLU_STATUS status = get(&raw);
    if (status == ROLU_STATUS_SUCCESS) value = show(raw);
    return status;
  };
}

template <typename Raw>
Reader Read(ROLU_STATUS (*get)(Raw*)) {
  return ReadAs<Raw>(get, [](const Raw& raw) { return AsValue(raw); });
}

template <typename Raw>
Reader ReadFlag(ROLU_STATUS (*get)(Raw*)) {
  return ReadAs<Raw>(get, [](Raw raw) { return raw != 0; });
}

// Reads a text of at most `Size` bytes.
template <std::size_t Size, typename Get>
Reader ReadText(Get get) {
  using Text = std::array<char, Size>;
  return ReadAs<Text>([get](Text* text) { return get(text->data()); },
                      [](const Text& text) { return AsValue(text); });
}

template <typename Raw>
Writer Write(ROLU_STATUS (*set)(Raw)) {
  return [set](const Value& value) { return set(value.get<Raw>()); };
}

// Readers and writers for one of several: a battery range, a source.

inline Reader ReadBatteryRange(CAR_BATTERY_MODE mode) {
  return ReadAs<BATTERY_INFO>(
      [mode](BATTERY_INFO* info) { return KAVO_ROLU_VPM_GetLBPThresholdInfo(mode, info); },
      [](const BATTERY_INFO& info) { return AsValue(info); });
}

template <typename Which>
Reader ReadFlagOf(ROLU_STATUS (*get)(Which, char*), Which which) {
  return ReadAs<char>([=](char* on) { return get(which, on); }, [](char on) { return on != 0; });
}

template <typename Which>
Writer WriteFlagOf(ROLU_STATUS (*set)(Which, char), Which which) {
  return [=](const Value& value) { return set(which, value.get<char>()); };
}

// The MCU sets the alarm's mode and time only together, so a change of one part writes both.

constexpr char kNoAlarm[] = "none";

struct Alarm {
  ALARM_MODE mode;
  VPM_ALARM_TIME time;
};

inline ROLU_STATUS GetAlarm(Alarm* alarm) {
  return KAVO_ROLU_VPM_GetAlarmTime(&alarm->mode, &alarm->time);
}

inline Value AlarmMode(const Alarm& alarm) {
  switch (alarm.mode) {
    case ALARM_MODE_NONE:
      return kNoAlarm;
    case ALARM_MODE_HOURLY:
      return "hourly";
    case ALARM_MODE_DAILY:
      return "daily";
    default:
      return "weekly";
  }
}

inline Value AlarmTime(const Alarm& alarm) {
  if (alarm.mode == ALARM_MODE_NONE) return kNoAlarm;
  return fmt::format("{:02}:{:02}", alarm.time.hour, alarm.time.minute);
}

inline Value AlarmWeekday(const Alarm& alarm) {
  return alarm.mode == ALARM_MODE_NONE ? Value(kNoAlarm) : Value(alarm.time.weekday);
}

// Makes a writer that changes one part of the alarm.
template <typename Change>
Writer WriteAlarm(Change change) {
  return [change](const Value& value) {
    Alarm alarm{};
    const ROLU_STATUS status = GetAlarm(&alarm);
    if (status != ROLU_STATUS_SUCCESS) return status;
    VPM_ALARM_TIME& time = alarm.time;
    // The fields of an alarm that was never set may be out of range.
    if (time.weekday > 6) time.weekday = 0;
    if (time.hour > 23) time.hour = 0;
    if (time.minute > 59) time.minute = 0;
    change(alarm, value);
    return KAVO_ROLU_VPM_SetAlarmTime(alarm.mode, time);
  };
}

inline void SetAlarmMode(Alarm& alarm, const Value& value) {
  alarm.mode = value == "hourly"  ? ALARM_MODE_HOURLY
               : value == "daily" ? ALARM_MODE_DAILY
                                  : ALARM_MODE_WEEKLY;
}

inline void SetAlarmTime(Alarm& alarm, const Value& value) {
  const TimeOfDay time = ParseTimeOfDay(value.get<std::string>()).value();
  alarm.time.hour = time.hour;
  alarm.time.minute = time.minute;
}

}  // namespace rolu::board_access
