#include <fmt/format.h>

#include <cmath>
#include <string>
#include <vector>

#include "soak/calls.h"

namespace rolu_soak {
namespace {

constexpr std::size_t kPlatformDigits = 12;

constexpr double kUnit24V = 0.01582;
constexpr double kUnit12V = 0.015385;

// What the application registers; the library only signals them.
pthread_cond_t ignition_event = PTHREAD_COND_INITIALIZER;
pthread_cond_t low_voltage_event = PTHREAD_COND_INITIALIZER;

Call OrdersVolts(ROLU_STATUS (*set)(float), double unit, const char* prefix) {
  return [=](Lane& lane) {
    const std::uint32_t raw = 100 + lane.Draw(1000);
    const ROLU_STATUS status = set(static_cast<float>((raw + 0.5) * unit));
    const std::string command = lane.LastCommand();
    // Half a unit is rounded either way; it need not be this side's rounding.
    return Outcome{status, command == fmt::format("{}{:04X}", prefix, raw) ||
                               command == fmt::format("{}{:04X}", prefix, raw + 1)};
  };
}

// One of two settings that the MCU keeps together: the other one goes back as it was answered.
Call ChangesBit(ROLU_STATUS (*set)(char), unsigned int bit) {
  return [=](Lane& lane) {
    const bool on = lane.Draw(2) != 0;
    const ROLU_STATUS status = set(on ? 1 : 0);
    const std::uint64_t number =
        (lane.Number("MCCG") & ~(std::uint64_t{1} << bit)) | (std::uint64_t{on} << bit);
    return Outcome{status, lane.LastCommand() == "MCCS" + AnswerText(AnswerForm::kTwoBits, number & 3U)};
  };
}

Call ChangesMode(ROLU_STATUS (*set)(char), bool first) {
  return [=](Lane& lane) {
    const std::uint64_t mode = lane.Draw(10);
    const ROLU_STATUS status = set(static_cast<char>(mode));
    const std::uint64_t modes = lane.Number("MCAG");
    const std::uint64_t expected = first ? mode * 10 + modes % 10 : modes / 10 * 10 + mode;
    return Outcome{status, lane.LastCommand() == fmt::format("MCAS{:02}", expected)};
  };
}

Outcome ReadVoltage(Lane& lane) {
  float volts = 0;
  const ROLU_STATUS status = KAVO_ROLU_VPM_GetCarBatteryVoltage(&volts);
  const double unit = lane.Number("MCBG") == 0 ? kUnit24V : kUnit12V;
  return {status,
          std::llround(static_cast<double>(volts) / unit) == static_cast<long long>(lane.Number("MCVG"))};
}

Outcome SetBatteryMode(Lane& lane) {
  const std::uint32_t mode = 2 + lane.Draw(2);
  const ROLU_STATUS status = KAVO_ROLU_VPM_SetCurrentCarBatteryMode(static_cast<CAR_BATTERY_MODE>(mode));
  return {status, lane.LastCommand() == fmt::format("MCBS{:02X}", mode)};
}

Outcome ReadPlatform(Lane& lane) {
  char name[kPlatformDigits + 1] = {};
  const ROLU_STATUS status = KAVO_ROLU_VPM_GetPlatformName(name);
  return {status, name == fmt::format("{:012X}", lane.Number("ATF1"))};
}

// What the last start-up read, which a fault may have struck; not half of it at least.
Outcome ReadRange(Lane& lane) {
  BATTERY_INFO range{};
  const auto mode = static_cast<CAR_BATTERY_MODE>(2 + lane.Draw(2));
  const ROLU_STATUS status = KAVO_ROLU_VPM_GetLBPThresholdInfo(mode, &range);
  return {status, range.range_mid == range.range_mid_copy};
}

Outcome ReadFirmware(Lane&) {
  VPM_FIRMWARE_INFO info{};
  return {KAVO_ROLU_VPM_GetFWVersion(&info), true};
}

Outcome ReadClock(Lane& lane) {
  VPM_RTC_TIME time{};
  const ROLU_STATUS status = KAVO_ROLU_VPM_GetRTCTime(&time);
  std::uint64_t number = 0;
  for (const std::uint8_t field :
       {time.year, time.month, time.day, time.weekday, time.hour, time.minute, time.second}) {
    number = number << 8U | field;
  }
  return {status, number == lane.Number("RTCG")};
}

Outcome SetClock(Lane& lane) {
  const auto draw = [&lane](std::uint32_t below) { return static_cast<std::uint8_t>(lane.Draw(below)); };
  const VPM_RTC_TIME time{draw(100), 7, 25, draw(7), draw(24), draw(60), draw(60)};
  const ROLU_STATUS status = KAVO_ROLU_VPM_SetRTCTime(time);
  return {status, lane.LastCommand() == fmt::format("RTCS{:02X}0719{:02X}{:02X}{:02X}{:02X}", time.year,
                                                    time.weekday, time.hour, time.minute, time.second)};
}

Outcome ReadAlarm(Lane& lane) {
  ALARM_MODE mode = ALARM_MODE_NONE;
  VPM_ALARM_TIME time{};
  const ROLU_STATUS status = KAVO_ROLU_VPM_GetAlarmTime(&mode, &time);
  return {status,
          (time.weekday << 16U | time.hour << 8U | time.minute) == static_cast<int>(lane.Number("RTAG"))};
}

Outcome SetAlarm(Lane& lane) {
  const VPM_ALARM_TIME time{5, 13, 30};
  const ROLU_STATUS status = KAVO_ROLU_VPM_SetAlarmTime(ALARM_MODE_DAILY, time);
  return {status, lane.LastCommand() == "RTASA0CB0D"};
}

// Which of the sources is drawn. `pattern` is the order's text with the source and what it is switched to.
template <typename Source>
Call SwitchesOneOf(const std::vector<int>& sources, ROLU_STATUS (*set)(Source, char), const char* pattern) {
  return [=](Lane& lane) {
    const int source = sources.at(lane.Draw(static_cast<std::uint32_t>(sources.size())));
    const std::uint32_t on = lane.Draw(2);
    const ROLU_STATUS status = set(static_cast<Source>(source), static_cast<char>(on));
    return Outcome{status, lane.LastCommand() == fmt::format(fmt::runtime(pattern), source, on)};
  };
}

Outcome ReadWakeupSwitch(Lane& lane) {
  const std::uint32_t source = lane.Draw(7);
  char on = 0;
  const ROLU_STATUS status =
      KAVO_ROLU_VPM_GetWakeupSourceControlStatus(static_cast<WAKEUP_SOURCE>(source), &on);
  return {status, static_cast<std::uint64_t>(on) == (lane.Number("WKMG") >> source & 1U)};
}

Outcome ReadShutdownSwitch(Lane& lane) {
  const std::uint32_t source = lane.Draw(2);
  char on = 0;
  const ROLU_STATUS status =
      KAVO_ROLU_VPM_GetShutdownSourceControlStatus(static_cast<SHUTDOWN_SOURCE>(source), &on);
  return {status, static_cast<std::uint64_t>(on) == (lane.Number("SDMG") >> source & 1U)};
}

Outcome ReadLastWakeup(Lane& lane) {
  WAKEUP_SOURCE source = WAKEUP_SOURCE_NONE;
  const ROLU_STATUS status = KAVO_ROLU_VPM_GetLastWakeupSource(&source);
  const auto index = static_cast<std::uint64_t>(source == WAKEUP_SOURCE_10 ? 8 : source + 1);
  return {status, index == lane.Number("WKSG")};
}

Outcome ReadBackupBattery(Lane& lane) {
  BACKUP_BATTERY_INFO info{};
  const ROLU_STATUS status = KAVO_ROLU_VPM_GetBackupBatteryInfo(&info);
  const std::uint64_t word = lane.Number("B05");
  const bool bits = info.status_bit0 == (word & 1U) && info.status_bit7 == (word >> 7U & 1U) &&
                    info.status_bit15 == (word >> 15U & 1U);
  return {status, bits && static_cast<std::uint64_t>(info.info_value) == lane.Number("B09")};
}

}  // namespace

std::vector<Operation> VpmOperations() {
  return {
      {"VPM_GetFWVersion", kVpm, kLaneDelays, kNothing, ReadFirmware},
      {"VPM_GetLBPThresholdInfo", kVpm, kLaneDelays, kNothing, ReadRange, {}, false},
      {"VPM_GetLBPLowDelay", kVpm, kLaneDelays, kCommand, ReadsWord(KAVO_ROLU_VPM_GetLBPLowDelay, "MCUG0")},
      {"VPM_SetLBPLowDelay", kVpm, kLaneDelays, kCommand50,
       Orders(KAVO_ROLU_VPM_SetLBPLowDelay, 1, 65535, "MCUS0{:04X}")},
      {"VPM_GetLBPLowHardDelay", kVpm, kLaneDelays, kCommand,
       ReadsWord(KAVO_ROLU_VPM_GetLBPLowHardDelay, "MCUG1")},
      {"VPM_SetLBPLowHardDelay", kVpm, kLaneDelays, kCommand50,
       Orders(KAVO_ROLU_VPM_SetLBPLowHardDelay, 1, 65535, "MCUS1{:04X}")},
      {"VPM_GetIgnOnDelay", kVpm, kLaneDelays, kCommand, ReadsWord(KAVO_ROLU_VPM_GetIgnOnDelay, "MCUG2")},
      {"VPM_SetIgnOnDelay", kVpm, kLaneDelays, kCommand50,
       Orders(KAVO_ROLU_VPM_SetIgnOnDelay, 1, 65535, "MCUS2{:04X}")},
      {"VPM_GetIgnOffEventDelay", kVpm, kLaneDelays, kCommand,
       ReadsWord(KAVO_ROLU_VPM_GetIgnOffEventDelay, "MCUG3")},
      {"VPM_SetIgnOffEventDelay", kVpm, kLaneDelays, kCommand50,
       Orders(KAVO_ROLU_VPM_SetIgnOffEventDelay, 1, 65535, "MCUS3{:04X}")},
      {"VPM_GetIgnHardOffDelay", kVpm, kLaneDelays, kCommand,
       ReadsWord(KAVO_ROLU_VPM_GetIgnHardOffDelay, "MCUG4")},
      {"VPM_SetIgnHardOffDelay", kVpm, kLaneDelays, kCommand50,
       Orders(KAVO_ROLU_VPM_SetIgnHardOffDelay, 1, 65535, "MCUS4{:04X}")},
      {"VPM_GetIgnSuspendHardOffDelay", kVpm, kLaneModes, kCommand,
       ReadsWord(KAVO_ROLU_VPM_GetIgnSuspendHardOffDelay, "MCUG6")},
      {"VPM_SetIgnSuspendHardOffDelay", kVpm, kLaneModes, kCommand50,
       Orders(KAVO_ROLU_VPM_SetIgnSuspendHardOffDelay, 1, 65535, "MCUS6{:04X}")},
      {"VPM_GetPrePowerOffAlarmDelay", kVpm, kLaneModes, kCommand,
       ReadsWord(KAVO_ROLU_VPM_GetPrePowerOffAlarmDelay, "MCUG7")},
      {"VPM_SetPrePowerOffAlarmDelay", kVpm, kLaneModes, kCommand50,
       Orders(KAVO_ROLU_VPM_SetPrePowerOffAlarmDelay, 1, 65535, "MCUS7{:04X}")},
      {"VPM_GetForceShutDownDelay", kVpm, kLaneModes, kCommand,
       ReadsWord(KAVO_ROLU_VPM_GetForceShutDownDelay, "MSDG")},
      {"VPM_SetForceShutDownDelay", kVpm, kLaneModes, kCommand50,
       Orders(KAVO_ROLU_VPM_SetForceShutDownDelay, 1, 65535, "MSDS{:04X}")},
      {"VPM_GetForceShutDown", kVpm, kLaneModes, kCommand, ReadsBit(KAVO_ROLU_VPM_GetForceShutDown, "MSSG")},
      {"VPM_SetForceShutDown", kVpm, kLaneModes, kCommand50,
       Orders(KAVO_ROLU_VPM_SetForceShutDown, 0, 2, "MSSS{}")},
      {"VPM_ForceShutdown", kVpm, kLaneModes, kCommand, Order(KAVO_ROLU_VPM_ForceShutdown, "ATPO")},
      {"VPM_GetPrePowerOffAlarm", kVpm, kLaneModes, kCommand,
       ReadsBit(KAVO_ROLU_VPM_GetPrePowerOffAlarm, "MPAG")},
      {"VPM_SetPrePowerOffAlarm", kVpm, kLaneModes, kCommand50,
       Orders(KAVO_ROLU_VPM_SetPrePowerOffAlarm, 0, 2, "MPAS{}")},
      {"VPM_GetIgnitionStatus", kVpm, kLaneModes, kCommand,
       ReadsBit(KAVO_ROLU_VPM_GetIgnitionStatus, "IGNG")},
      {"VPM_GetIgnitionMode", kVpm, kLaneModes, kCommand,
       Reads(KAVO_ROLU_VPM_GetIgnitionMode, "IGMG",
             [](IGNITION_MODE mode, std::uint64_t number) {
               return static_cast<std::uint64_t>(mode) == number + 1;
             })},
      {"VPM_SetIgnitionMode", kVpm, kLaneModes, kCommand50,
       Orders(KAVO_ROLU_VPM_SetIgnitionMode, 1, 2, "IGMS{}")},
      {"VPM_GetKeepAliveMode", kVpm, kLaneModes, kCommand,
       Reads(
           KAVO_ROLU_VPM_GetKeepAliveMode, "MCAG",
           [](char mode, std::uint64_t number) { return static_cast<std::uint64_t>(mode) == number / 10; })},
      {"VPM_GetATMode", kVpm, kLaneModes, kCommand,
       Reads(
           KAVO_ROLU_VPM_GetATMode, "MCAG",
           [](char mode, std::uint64_t number) { return static_cast<std::uint64_t>(mode) == number % 10; })},
      {"VPM_SetKeepAliveMode", kVpm, kLaneModes, kTwoCommands50,
       ChangesMode(KAVO_ROLU_VPM_SetKeepAliveMode, true)},
      {"VPM_SetATMode", kVpm, kLaneModes, kTwoCommands50, ChangesMode(KAVO_ROLU_VPM_SetATMode, false)},
      {"VPM_GetPlatformName", kVpm, kLaneModes, kCommand, ReadPlatform},
      {"VPM_SetIgnPowerOffEvent", kVpm, kLaneModes, kInnerLock,
       Registers(KAVO_ROLU_VPM_SetIgnPowerOffEvent, ignition_event)},
      {"VPM_SetLBPPowerOffEvent", kVpm, kLaneModes, kInnerLock,
       Registers(KAVO_ROLU_VPM_SetLBPPowerOffEvent, low_voltage_event)},
      {"VPM_GetLBPThresholdFor12VSystem", kVpm, kLaneBattery, kCommand,
       ReadsUnits(KAVO_ROLU_VPM_GetLBPThresholdFor12VSystem, "MCPG31", kUnit12V)},
      {"VPM_SetLBPThresholdFor12VSystem", kVpm, kLaneBattery, kCommand50,
       OrdersVolts(KAVO_ROLU_VPM_SetLBPThresholdFor12VSystem, kUnit12V, "MCPS31")},
      {"VPM_GetPrebootThresholdFor12VSystem", kVpm, kLaneBattery, kCommand,
       ReadsUnits(KAVO_ROLU_VPM_GetPrebootThresholdFor12VSystem, "MCPG30", kUnit12V)},
      {"VPM_SetPrebootThresholdFor12VSystem", kVpm, kLaneBattery, kCommand50,
       OrdersVolts(KAVO_ROLU_VPM_SetPrebootThresholdFor12VSystem, kUnit12V, "MCPS30")},
      {"VPM_GetLBPThresholdFor24VSystem", kVpm, kLaneBattery, kCommand,
       ReadsUnits(KAVO_ROLU_VPM_GetLBPThresholdFor24VSystem, "MCPG21", kUnit24V)},
      {"VPM_SetLBPThresholdFor24VSystem", kVpm, kLaneBattery, kCommand50,
       OrdersVolts(KAVO_ROLU_VPM_SetLBPThresholdFor24VSystem, kUnit24V, "MCPS21")},
      {"VPM_GetPrebootThresholdFor24VSystem", kVpm, kLaneBattery, kCommand,
       ReadsUnits(KAVO_ROLU_VPM_GetPrebootThresholdFor24VSystem, "MCPG20", kUnit24V)},
      {"VPM_SetPrebootThresholdFor24VSystem", kVpm, kLaneBattery, kCommand50,
       OrdersVolts(KAVO_ROLU_VPM_SetPrebootThresholdFor24VSystem, kUnit24V, "MCPS20")},
      {"VPM_GetCarBatteryVoltage", kVpm, kLaneBattery, kTwoCommands, ReadVoltage},
      {"VPM_GetCurrentCarBatteryMode", kVpm, kLaneBattery, kCommand,
       Reads(KAVO_ROLU_VPM_GetCurrentCarBatteryMode, "MCBG",
             [](CAR_BATTERY_MODE mode, std::uint64_t number) {
               return static_cast<std::uint64_t>(mode) == number + 2;
             })},
      {"VPM_SetCurrentCarBatteryMode", kVpm, kLaneBattery, kTwoCommands100, SetBatteryMode},
      {"VPM_GetLBPStatus", kVpm, kLaneBattery, kCommand, ReadsBit(KAVO_ROLU_VPM_GetLBPStatus, "MCCG", 1)},
      {"VPM_SetLBPStatus", kVpm, kLaneBattery, kTwoCommands50, ChangesBit(KAVO_ROLU_VPM_SetLBPStatus, 1)},
      {"VPM_GetPrebootLBPStatus", kVpm, kLaneBattery, kCommand,
       ReadsBit(KAVO_ROLU_VPM_GetPrebootLBPStatus, "MCCG", 0)},
      {"VPM_SetPrebootLBPStatus", kVpm, kLaneBattery, kTwoCommands50,
       ChangesBit(KAVO_ROLU_VPM_SetPrebootLBPStatus, 0)},
      {"VPM_GetRTCTime", kVpm, kLaneClock, kCommand, ReadClock},
      {"VPM_SetRTCTime", kVpm, kLaneClock, kClockSetting, SetClock},
      {"VPM_GetAlarmTime", kVpm, kLaneClock, kCommand, ReadAlarm},
      {"VPM_SetAlarmTime", kVpm, kLaneClock, kCommand150, SetAlarm},
      {"VPM_GetAlarmActive", kVpm, kLaneClock, kCommand, ReadsBit(KAVO_ROLU_VPM_GetAlarmActive, "WKMG", 6)},
      {"VPM_SetAlarmActive", kVpm, kLaneClock, kCommand50,
       Orders(KAVO_ROLU_VPM_SetAlarmActive, 0, 2, "WKMS6{}")},
      {"VPM_SetWakeupSourceControlStatus", kVpm, kLaneClock, kCommand50,
       SwitchesOneOf({0, 1, 2, 3, 4, 5, 6, 10}, KAVO_ROLU_VPM_SetWakeupSourceControlStatus, "WKMS{}{}")},
      {"VPM_SetShutdownSourceControlStatus", kVpm, kLaneClock, kCommand50,
       SwitchesOneOf({0, 1}, KAVO_ROLU_VPM_SetShutdownSourceControlStatus, "SDMS{}{}")},
      {"VPM_GetWakeupSourceControlStatus", kVpm, kLaneClock, kCommand, ReadWakeupSwitch},
      {"VPM_GetShutdownSourceControlStatus", kVpm, kLaneClock, kCommand, ReadShutdownSwitch},
      {"VPM_GetLastWakeupSource", kVpm, kLaneClock, kCommand, ReadLastWakeup},
      {"VPM_LoadDefaultValue", kVpm, kLaneClock, kCommand1250, Order(KAVO_ROLU_VPM_LoadDefaultValue, "EEDF")},
      {"VPM_GetBackupBatteryVoltage", kVpm, kLaneClock, kCommand,
       ReadsUnits(KAVO_ROLU_VPM_GetBackupBatteryVoltage, "B04", 0.001)},
      {"VPM_GetBackupBatteryTemperture", kVpm, kLaneClock, kCommand,
       ReadsUnits(KAVO_ROLU_VPM_GetBackupBatteryTemperture, "B03", 0.1, 273.15)},
      {"VPM_GetBackupBatteryRemainingCapacity", kVpm, kLaneClock, kCommand,
       ReadsWord(KAVO_ROLU_VPM_GetBackupBatteryRemainingCapacity, "B08")},
      {"VPM_GetBackupBatteryPercentageOfCharge", kVpm, kLaneClock, kCommand,
       ReadsWord(KAVO_ROLU_VPM_GetBackupBatteryPercentageOfCharge, "B22")},
      {"VPM_GetBackupBatteryRemainingTime", kVpm, kLaneClock, kCommand,
       ReadsWord(KAVO_ROLU_VPM_GetBackupBatteryRemainingTime, "B11")},
      {"VPM_GetBackupBatteryTimeToFull", kVpm, kLaneClock, kCommand,
       ReadsWord(KAVO_ROLU_VPM_GetBackupBatteryTimeToFull, "B12")},
      {"VPM_GetBackupBatteryInfo", kVpm, kLaneClock, kTwoCommands, ReadBackupBattery},
  };
}

}  // namespace rolu_soak
