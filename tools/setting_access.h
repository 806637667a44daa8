#pragma once

// How the rows of the table reach the library: adaptors from its typed getters and setters to values. A row
// names its functions as template arguments.

#include <cstdint>
#include <type_traits>

#include "kavo_rolu.h"
#include "tools/setting.h"

namespace rolu::access {

template <typename T>
T GotBy(ROLU_STATUS (*)(T*));
template <typename T>
T TakenBy(ROLU_STATUS (*)(T));

// What the library gave, as a value.

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
Value AsValue(CAR_BATTERY_MODE mode);
Value AsValue(WAKEUP_SOURCE source);
Value AsValue(const VPM_FIRMWARE_INFO& info);
Value AsValue(const VPM_RTC_TIME& time);
Value AsValue(const BATTERY_INFO& info);
Value AsValue(const ROLU_GSENSOR_DATA& sample);

template <typename Raw>
Value IsOn(Raw raw) {
  return raw != 0;
}
Value Celsius(float raw);
Value InfoNumber(const BACKUP_BATTERY_INFO& info);
Value SetFlags(const BACKUP_BATTERY_INFO& info);

// What the library gives in two pieces, or for one of several, as one thing.
struct Alarm {
  ALARM_MODE mode;
  VPM_ALARM_TIME time;
};
ROLU_STATUS GetAlarm(Alarm* alarm);
Value AlarmMode(const Alarm& alarm);
Value AlarmTime(const Alarm& alarm);
Value AlarmWeekday(const Alarm& alarm);

template <CAR_BATTERY_MODE Mode>
ROLU_STATUS GetBatteryRange(BATTERY_INFO* info) {
  return KAVO_ROLU_VPM_GetLBPThresholdInfo(Mode, info);
}

template <auto Get, auto Show>
ROLU_STATUS ReadAs(Value& value) {
  decltype(GotBy(Get)) raw{};
  const ROLU_STATUS status = Get(&raw);
  if (status == ROLU_STATUS_SUCCESS) value = Show(raw);
  return status;
}

template <auto Get>
ROLU_STATUS Read(Value& value) {
  decltype(GotBy(Get)) raw{};
  const ROLU_STATUS status = Get(&raw);
  if (status == ROLU_STATUS_SUCCESS) value = AsValue(raw);
  return status;
}

template <auto Get>
ROLU_STATUS ReadFlag(Value& value) {
  return ReadAs<Get, IsOn<decltype(GotBy(Get))>>(value);
}

template <auto Set>
ROLU_STATUS Write(const Value& value) {
  return Set(value.get<decltype(TakenBy(Set))>());
}

template <auto Set>
ROLU_STATUS WriteFlag(const Value& value) {
  return Set(static_cast<decltype(TakenBy(Set))>(value.get<bool>() ? 1 : 0));
}

// The switches that are told apart by a source or a type.

template <auto Get, auto Which>
ROLU_STATUS ReadFlagOf(Value& value) {
  char enabled = 0;
  const ROLU_STATUS status = Get(Which, &enabled);
  if (status == ROLU_STATUS_SUCCESS) value = enabled != 0;
  return status;
}

template <auto Set, auto Which>
ROLU_STATUS WriteFlagOf(const Value& value) {
  return Set(Which, static_cast<char>(value.get<bool>() ? 1 : 0));
}

// The rest, each with a shape of its own.

ROLU_STATUS LibraryVersion(Value& value);
ROLU_STATUS Machine(Value& value);
ROLU_STATUS KernelRelease(Value& value);
ROLU_STATUS McuPlatform(Value& value);
ROLU_STATUS SetBatteryMode(const Value& value);
ROLU_STATUS SetAlarmMode(const Value& value);
ROLU_STATUS SetAlarmTime(const Value& value);
ROLU_STATUS SetAlarmWeekday(const Value& value);
ROLU_STATUS InputPins(Value& value);

}  // namespace rolu::access
