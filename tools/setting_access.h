#pragma once

// How the rows of the table reach the library: adaptors from its typed getters and setters to
// values. A row names its functions as template arguments.

#include <cmath>
#include <cstdint>

#include "kavo_rolu.h"
#include "tools/setting.h"

namespace rolu::access {

template <typename T>
T GotBy(ROLU_STATUS (*)(T*));
template <typename T>
T TakenBy(ROLU_STATUS (*)(T));

// The interface's `char` holds 0 to 255, whatever its sign on this machine.
template <typename T>
std::int64_t AsNumber(T raw) {
  if constexpr (sizeof(T) == 1) return static_cast<unsigned char>(raw);
  return static_cast<std::int64_t>(raw);
}

// Multiples of a thousandth that print as such.
inline double Volts(float raw) {
  return std::round(static_cast<double>(raw) * 1000.0) / 1000.0;
}

template <auto Get>
ROLU_STATUS Number(Value& value) {
  decltype(GotBy(Get)) raw{};
  const ROLU_STATUS status = Get(&raw);
  if (status == ROLU_STATUS_SUCCESS) value = AsNumber(raw);
  return status;
}

template <auto Get>
ROLU_STATUS Flag(Value& value) {
  decltype(GotBy(Get)) raw{};
  const ROLU_STATUS status = Get(&raw);
  if (status == ROLU_STATUS_SUCCESS) value = raw != 0;
  return status;
}

template <auto Get>
ROLU_STATUS Voltage(Value& value) {
  float raw = 0;
  const ROLU_STATUS status = Get(&raw);
  if (status == ROLU_STATUS_SUCCESS) value = Volts(raw);
  return status;
}

template <auto Set>
ROLU_STATUS SetNumber(const Value& value) {
  return Set(static_cast<decltype(TakenBy(Set))>(value.get<std::int64_t>()));
}

template <auto Set>
ROLU_STATUS SetFlag(const Value& value) {
  return Set(static_cast<decltype(TakenBy(Set))>(value.get<bool>() ? 1 : 0));
}

template <auto Set>
ROLU_STATUS SetVoltage(const Value& value) {
  return Set(static_cast<float>(value.get<double>()));
}

// The switches that are told apart by a source or a type.

template <auto Get, auto Which>
ROLU_STATUS FlagOf(Value& value) {
  char enabled = 0;
  const ROLU_STATUS status = Get(Which, &enabled);
  if (status == ROLU_STATUS_SUCCESS) value = enabled != 0;
  return status;
}

template <auto Set, auto Which>
ROLU_STATUS SetFlagOf(const Value& value) {
  return Set(Which, static_cast<char>(value.get<bool>() ? 1 : 0));
}

// The rest, each with a shape of its own.

ROLU_STATUS LibraryVersion(Value& value);
ROLU_STATUS Machine(Value& value);
ROLU_STATUS KernelRelease(Value& value);
ROLU_STATUS Firmware(Value& value);
ROLU_STATUS McuPlatform(Value& value);

ROLU_STATUS BatteryMode(Value& value);
ROLU_STATUS SetBatteryMode(const Value& value);
template <CAR_BATTERY_MODE Mode>
ROLU_STATUS BatteryRange(Value& value) {
  BATTERY_INFO info{};
  const ROLU_STATUS status = KAVO_ROLU_VPM_GetLBPThresholdInfo(Mode, &info);
  if (status == ROLU_STATUS_SUCCESS) {
    value = {Volts(info.range_start), Volts(info.range_mid), Volts(info.range_end)};
  }
  return status;
}

ROLU_STATUS LastWakeup(Value& value);
ROLU_STATUS ClockTime(Value& value);
ROLU_STATUS AlarmMode(Value& value);
ROLU_STATUS SetAlarmMode(const Value& value);
ROLU_STATUS AlarmTime(Value& value);
ROLU_STATUS SetAlarmTime(const Value& value);
ROLU_STATUS AlarmWeekday(Value& value);
ROLU_STATUS SetAlarmWeekday(const Value& value);

ROLU_STATUS BackupTemperature(Value& value);
ROLU_STATUS BackupInfo(Value& value);
ROLU_STATUS BackupFlags(Value& value);
ROLU_STATUS GsensorSample(Value& value);
ROLU_STATUS InputPins(Value& value);

}  // namespace rolu::access
