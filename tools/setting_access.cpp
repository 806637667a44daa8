#include "tools/setting_access.h"

#include <fmt/format.h>

#include <array>
#include <cmath>
#include <cstring>
#include <string>

#include "tools/wall_time.h"

namespace rolu::access {
namespace {

constexpr char kNoAlarm[] = "none";

// At most `size` bytes up to a NUL, and only characters that print.
std::string Printable(const char* text, std::size_t size) {
  std::string printable(text, strnlen(text, size));
  for (char& character : printable) {
    if (character < ' ' || character > '~') character = '?';
  }
  return printable;
}

// A text that the library writes into `Size` bytes.
template <std::size_t Size, typename Get>
ROLU_STATUS ReadText(Value& value, Get get) {
  std::array<char, Size> text{};
  const ROLU_STATUS status = get(text.data());
  if (status == ROLU_STATUS_SUCCESS) value = Printable(text.data(), text.size());
  return status;
}

// The alarm's mode and time are one thing to the MCU: a part is changed by writing the whole.
template <typename Change>
ROLU_STATUS ChangeAlarm(Change change) {
  Alarm alarm{};
  const ROLU_STATUS status = GetAlarm(&alarm);
  if (status != ROLU_STATUS_SUCCESS) return status;
  VPM_ALARM_TIME& time = alarm.time;
  // An alarm that was never set may hold anything.
  if (time.weekday > 6) time.weekday = 0;
  if (time.hour > 23) time.hour = 0;
  if (time.minute > 59) time.minute = 0;
  change(alarm);
  return KAVO_ROLU_VPM_SetAlarmTime(alarm.mode, time);
}

}  // namespace

Value AsValue(CAR_BATTERY_MODE mode) {
  return mode == CAR_BATTERY_MODE_24V ? "24V" : "12V";
}

Value AsValue(WAKEUP_SOURCE source) {
  if (source == WAKEUP_SOURCE_NONE) return "none";
  if (source == WAKEUP_SOURCE_RTC_ALARM) return "alarm";
  return fmt::format("source-{}", static_cast<int>(source));
}

Value AsValue(const VPM_FIRMWARE_INFO& info) {
  return Printable(info.text, sizeof info.text);
}

Value AsValue(const VPM_RTC_TIME& time) {
  return ClockText(time);
}

Value AsValue(const ROLU_GSENSOR_DATA& sample) {
  return {sample.x, sample.y, sample.z};
}

Value AsValue(const BATTERY_INFO& info) {
  return {Thousandths(info.range_start), Thousandths(info.range_mid), Thousandths(info.range_end)};
}

Value Celsius(float raw) {
  return std::round(static_cast<double>(raw) * 10.0) / 10.0;
}

Value InfoNumber(const BACKUP_BATTERY_INFO& info) {
  return info.info_value;
}

Value SetFlags(const BACKUP_BATTERY_INFO& info) {
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

ROLU_STATUS LibraryVersion(Value& value) {
  return ReadText<18>(value, [](char* text) {
    std::array<unsigned char, 18> version{};
    const ROLU_STATUS status = KAVO_ROLU_CORE_GetLibVersion(version.data());
    std::memcpy(text, version.data(), version.size());
    return status;
  });
}

ROLU_STATUS Machine(Value& value) {
  return ReadText<65>(value, [](char* name) {
    ROLU_PLATFORM_NAME platform{name, nullptr};
    return KAVO_ROLU_CORE_GetPlatformName(&platform);
  });
}

ROLU_STATUS KernelRelease(Value& value) {
  return ReadText<128>(value, [](char* release) {
    std::array<char, 128> version{};
    ROLU_IMAGE_INFO info{nullptr, nullptr, release, version.data()};
    return KAVO_ROLU_CORE_GetImageinfo(&info);
  });
}

ROLU_STATUS McuPlatform(Value& value) {
  return ReadText<16>(value, KAVO_ROLU_VPM_GetPlatformName);
}

ROLU_STATUS SetBatteryMode(const Value& value) {
  return KAVO_ROLU_VPM_SetCurrentCarBatteryMode(value == "24V" ? CAR_BATTERY_MODE_24V : CAR_BATTERY_MODE_12V);
}

ROLU_STATUS GetAlarm(Alarm* alarm) {
  return KAVO_ROLU_VPM_GetAlarmTime(&alarm->mode, &alarm->time);
}

Value AlarmMode(const Alarm& alarm) {
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

Value AlarmTime(const Alarm& alarm) {
  if (alarm.mode == ALARM_MODE_NONE) return kNoAlarm;
  return fmt::format("{:02}:{:02}", alarm.time.hour, alarm.time.minute);
}

Value AlarmWeekday(const Alarm& alarm) {
  return alarm.mode == ALARM_MODE_NONE ? Value(kNoAlarm) : Value(alarm.time.weekday);
}

ROLU_STATUS SetAlarmMode(const Value& value) {
  return ChangeAlarm([&](Alarm& alarm) {
    alarm.mode = value == "hourly"  ? ALARM_MODE_HOURLY
                 : value == "daily" ? ALARM_MODE_DAILY
                                    : ALARM_MODE_WEEKLY;
  });
}

ROLU_STATUS SetAlarmTime(const Value& value) {
  return ChangeAlarm([text = value.get<std::string>()](Alarm& alarm) {
    alarm.time.hour = static_cast<std::uint8_t>(std::stoi(text.substr(0, 2)));
    alarm.time.minute = static_cast<std::uint8_t>(std::stoi(text.substr(3)));
  });
}

ROLU_STATUS SetAlarmWeekday(const Value& value) {
  return ChangeAlarm([&](Alarm& alarm) { alarm.time.weekday = value.get<std::uint8_t>(); });
}

ROLU_STATUS InputPins(Value& value) {
  std::array<unsigned char, 2> pins{};
  const ROLU_STATUS status = KAVO_ROLU_DIO_ReadDIPin(pins.data());
  if (status == ROLU_STATUS_SUCCESS) value = pins;
  return status;
}

}  // namespace rolu::access
