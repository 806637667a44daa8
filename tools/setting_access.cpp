#include "tools/setting_access.h"

#include <fmt/format.h>

#include <array>
#include <cstring>
#include <string>

#include "tools/wall_time.h"

namespace rolu::access {
namespace {

// At most `size` bytes up to a NUL, and only characters that print.
std::string Printable(const char* text, std::size_t size) {
  std::string printable(text, strnlen(text, size));
  for (char& character : printable) {
    if (character < ' ' || character > '~') character = '?';
  }
  return printable;
}

ROLU_STATUS ImageInfo(std::array<char, 128>& release) {
  std::array<char, 128> version{};
  ROLU_IMAGE_INFO info{nullptr, nullptr, release.data(), version.data()};
  return KAVO_ROLU_CORE_GetImageinfo(&info);
}

constexpr std::string_view kNoAlarm = "none";

// The alarm's mode and time are one thing to the MCU: a part is changed by writing the whole.
template <typename Change>
ROLU_STATUS ChangeAlarm(Change change) {
  ALARM_MODE mode = ALARM_MODE_NONE;
  VPM_ALARM_TIME time{};
  const ROLU_STATUS status = KAVO_ROLU_VPM_GetAlarmTime(&mode, &time);
  if (status != ROLU_STATUS_SUCCESS) return status;
  // An alarm that was never set may hold anything.
  if (time.weekday > 6) time.weekday = 0;
  if (time.hour > 23) time.hour = 0;
  if (time.minute > 59) time.minute = 0;
  change(mode, time);
  return KAVO_ROLU_VPM_SetAlarmTime(mode, time);
}

template <typename Show>
ROLU_STATUS ShowAlarm(Value& value, Show show) {
  ALARM_MODE mode = ALARM_MODE_NONE;
  VPM_ALARM_TIME time{};
  const ROLU_STATUS status = KAVO_ROLU_VPM_GetAlarmTime(&mode, &time);
  if (status != ROLU_STATUS_SUCCESS) return status;
  value = mode == ALARM_MODE_NONE ? Value(kNoAlarm) : show(mode, time);
  return status;
}

}  // namespace

ROLU_STATUS LibraryVersion(Value& value) {
  std::array<unsigned char, 18> version{};
  const ROLU_STATUS status = KAVO_ROLU_CORE_GetLibVersion(version.data());
  if (status != ROLU_STATUS_SUCCESS) return status;
  std::array<char, 18> text{};
  std::memcpy(text.data(), version.data(), text.size());
  value = Printable(text.data(), text.size());
  return status;
}

ROLU_STATUS Machine(Value& value) {
  std::array<char, 65> name{};
  ROLU_PLATFORM_NAME platform{name.data(), nullptr};
  const ROLU_STATUS status = KAVO_ROLU_CORE_GetPlatformName(&platform);
  if (status == ROLU_STATUS_SUCCESS) value = Printable(name.data(), name.size());
  return status;
}

ROLU_STATUS KernelRelease(Value& value) {
  std::array<char, 128> release{};
  const ROLU_STATUS status = ImageInfo(release);
  if (status == ROLU_STATUS_SUCCESS) value = Printable(release.data(), release.size());
  return status;
}

ROLU_STATUS Firmware(Value& value) {
  VPM_FIRMWARE_INFO info{};
  const ROLU_STATUS status = KAVO_ROLU_VPM_GetFWVersion(&info);
  if (status == ROLU_STATUS_SUCCESS) value = Printable(info.text, sizeof info.text);
  return status;
}

ROLU_STATUS McuPlatform(Value& value) {
  std::array<char, 16> name{};
  const ROLU_STATUS status = KAVO_ROLU_VPM_GetPlatformName(name.data());
  if (status == ROLU_STATUS_SUCCESS) value = Printable(name.data(), name.size());
  return status;
}

ROLU_STATUS BatteryMode(Value& value) {
  CAR_BATTERY_MODE mode{};
  const ROLU_STATUS status = KAVO_ROLU_VPM_GetCurrentCarBatteryMode(&mode);
  if (status == ROLU_STATUS_SUCCESS) value = mode == CAR_BATTERY_MODE_24V ? "24V" : "12V";
  return status;
}

ROLU_STATUS SetBatteryMode(const Value& value) {
  return KAVO_ROLU_VPM_SetCurrentCarBatteryMode(value == "24V" ? CAR_BATTERY_MODE_24V : CAR_BATTERY_MODE_12V);
}

ROLU_STATUS LastWakeup(Value& value) {
  WAKEUP_SOURCE source = WAKEUP_SOURCE_NONE;
  const ROLU_STATUS status = KAVO_ROLU_VPM_GetLastWakeupSource(&source);
  if (status != ROLU_STATUS_SUCCESS) return status;
  switch (source) {
    case WAKEUP_SOURCE_NONE:
      value = "none";
      break;
    case WAKEUP_SOURCE_RTC_ALARM:
      value = "alarm";
      break;
    default:
      value = fmt::format("source-{}", static_cast<int>(source));
  }
  return status;
}

ROLU_STATUS ClockTime(Value& value) {
  VPM_RTC_TIME time{};
  const ROLU_STATUS status = KAVO_ROLU_VPM_GetRTCTime(&time);
  if (status == ROLU_STATUS_SUCCESS) value = ClockText(time);
  return status;
}

ROLU_STATUS AlarmMode(Value& value) {
  return ShowAlarm(value, [](ALARM_MODE mode, const VPM_ALARM_TIME&) -> Value {
    switch (mode) {
      case ALARM_MODE_HOURLY:
        return "hourly";
      case ALARM_MODE_DAILY:
        return "daily";
      default:
        return "weekly";
    }
  });
}

ROLU_STATUS SetAlarmMode(const Value& value) {
  return ChangeAlarm([&](ALARM_MODE& mode, VPM_ALARM_TIME&) {
    mode = value == "hourly" ? ALARM_MODE_HOURLY : value == "daily" ? ALARM_MODE_DAILY : ALARM_MODE_WEEKLY;
  });
}

ROLU_STATUS AlarmTime(Value& value) {
  return ShowAlarm(value, [](ALARM_MODE, const VPM_ALARM_TIME& time) -> Value {
    return fmt::format("{:02}:{:02}", time.hour, time.minute);
  });
}

ROLU_STATUS SetAlarmTime(const Value& value) {
  return ChangeAlarm([text = value.get<std::string>()](ALARM_MODE&, VPM_ALARM_TIME& time) {
    time.hour = static_cast<std::uint8_t>(std::stoi(text.substr(0, 2)));
    time.minute = static_cast<std::uint8_t>(std::stoi(text.substr(3)));
  });
}

ROLU_STATUS AlarmWeekday(Value& value) {
  return ShowAlarm(value, [](ALARM_MODE, const VPM_ALARM_TIME& time) -> Value { return time.weekday; });
}

ROLU_STATUS SetAlarmWeekday(const Value& value) {
  return ChangeAlarm([&](ALARM_MODE&, VPM_ALARM_TIME& time) { time.weekday = value.get<std::uint8_t>(); });
}

ROLU_STATUS BackupTemperature(Value& value) {
  float celsius = 0;
  const ROLU_STATUS status = KAVO_ROLU_VPM_GetBackupBatteryTemperture(&celsius);
  if (status == ROLU_STATUS_SUCCESS) value = std::round(static_cast<double>(celsius) * 10.0) / 10.0;
  return status;
}

ROLU_STATUS BackupInfo(Value& value) {
  BACKUP_BATTERY_INFO info{};
  const ROLU_STATUS status = KAVO_ROLU_VPM_GetBackupBatteryInfo(&info);
  if (status == ROLU_STATUS_SUCCESS) value = info.info_value;
  return status;
}

ROLU_STATUS BackupFlags(Value& value) {
  BACKUP_BATTERY_INFO info{};
  const ROLU_STATUS status = KAVO_ROLU_VPM_GetBackupBatteryInfo(&info);
  if (status != ROLU_STATUS_SUCCESS) return status;
  const std::pair<int, std::uint8_t> flags[] = {
      {0, info.status_bit0},   {1, info.status_bit1},   {2, info.status_bit2},   {7, info.status_bit7},
      {8, info.status_bit8},   {9, info.status_bit9},   {10, info.status_bit10}, {11, info.status_bit11},
      {14, info.status_bit14}, {15, info.status_bit15},
  };
  value = Value::array();
  for (const auto& [bit, set] : flags) {
    if (set != 0) value.push_back(bit);
  }
  return status;
}

ROLU_STATUS GsensorSample(Value& value) {
  ROLU_GSENSOR_DATA sample{};
  const ROLU_STATUS status = KAVO_ROLU_GSENSOR_GetData(&sample);
  if (status == ROLU_STATUS_SUCCESS) value = {sample.x, sample.y, sample.z};
  return status;
}

ROLU_STATUS InputPins(Value& value) {
  std::array<unsigned char, 2> pins{};
  const ROLU_STATUS status = KAVO_ROLU_DIO_ReadDIPin(pins.data());
  if (status == ROLU_STATUS_SUCCESS) value = {pins[0], pins[1]};
  return status;
}

}  // namespace rolu::access
