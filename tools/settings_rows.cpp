// The rows of the table of settings.

#include "tools/setting_access.h"
#include "tools/settings_table.h"

namespace rolu {
namespace {

using namespace access;  // NOLINT(google-build-using-namespace): the rows below are read as a table

// The largest step to which the MCU rounds a voltage: one unit of the 24 V system.
constexpr double kVoltageStep = 0.016;
// The G-sensor's thresholds are cut to multiples of 62.5 and read back rounded.
constexpr double kThresholdStep = 63;

constexpr std::string_view kMcuUnits = "MCU units";
constexpr std::string_view kSensorUnits = "sensor units";

// What can only be read.
Setting Reading(std::string_view name, std::string_view help, Kind kind, ROLU_STATUS (*read)(Value&),
                std::string_view unit = {}, Family family = Family::kVpm) {
  return {.name = name, .help = help, .family = family, .kind = kind, .unit = unit, .read = read};
}

// A whole number.
Setting Number(std::string_view name, std::string_view help, double minimum, double maximum,
               ROLU_STATUS (*read)(Value&), ROLU_STATUS (*write)(const Value&),
               Family family = Family::kVpm) {
  return {.name = name,
          .help = help,
          .family = family,
          .minimum = minimum,
          .maximum = maximum,
          .read = read,
          .write = write};
}

// A delay of the MCU's.
template <auto Get, auto Set>
Setting Delay(std::string_view name, std::string_view help) {
  return {.name = name,
          .help = help,
          .unit = kMcuUnits,
          .minimum = 1,
          .maximum = 65535,
          .read = Read<Get>,
          .write = Write<Set>};
}

template <auto Get, auto Set>
Setting Threshold(std::string_view name, std::string_view help) {
  return {.name = name,
          .help = help,
          .kind = Kind::kVolts,
          .unit = "V",
          .minimum = 0,
          .maximum = 100,
          .rounding = kVoltageStep,
          .read = Read<Get>,
          .write = Write<Set>,
          .asks = AsksFirst::kAlways,
          .consequence = "moves a threshold of the low-battery protections"};
}

// On or off; `asks` and `consequence` when a change must be confirmed.
template <auto Get, auto Set>
Setting Switch(std::string_view name, std::string_view help, AsksFirst asks = AsksFirst::kNever,
               std::string_view consequence = {}) {
  return {.name = name,
          .help = help,
          .kind = Kind::kFlag,
          .read = ReadFlag<Get>,
          .write = WriteFlag<Set>,
          .asks = asks,
          .consequence = consequence};
}

template <WAKEUP_SOURCE Source>
Setting WakeupSource(std::string_view name) {
  return {.name = name,
          .help = "Whether this cause may wake the computer; the MCU defines what it is",
          .kind = Kind::kFlag,
          .read = ReadFlagOf<KAVO_ROLU_VPM_GetWakeupSourceControlStatus, Source>,
          .write = WriteFlagOf<KAVO_ROLU_VPM_SetWakeupSourceControlStatus, Source>};
}

template <SHUTDOWN_SOURCE Source>
Setting ShutdownSource(std::string_view name) {
  return {.name = name,
          .help = "Whether this cause may shut the computer down; the MCU defines what it is",
          .kind = Kind::kFlag,
          .read = ReadFlagOf<KAVO_ROLU_VPM_GetShutdownSourceControlStatus, Source>,
          .write = WriteFlagOf<KAVO_ROLU_VPM_SetShutdownSourceControlStatus, Source>};
}

// A switched peripheral keeps its state, but is a switch of the moment: not saved.
template <PERIPHERAL_TYPE Type>
Setting Peripheral(std::string_view name, std::string_view help) {
  return {.name = name,
          .help = help,
          .family = Family::kPeripherals,
          .kind = Kind::kFlag,
          .read = ReadFlagOf<KAVO_ROLU_PERIPHERALCTRL_GetPeripheralControl, Type>,
          .write = WriteFlagOf<KAVO_ROLU_PERIPHERALCTRL_SetPeripheralControl, Type>,
          .saved = false};
}

std::vector<Setting> BoardSettings() {
  return {
      Reading("board.machine", "The processor, as the kernel names it", Kind::kText, Machine, {},
              Family::kCore),
      Reading("board.kernel", "The kernel's release", Kind::kText, KernelRelease, {}, Family::kCore),
      Reading("board.library", "The library's interface version", Kind::kText, LibraryVersion, {},
              Family::kCore),
      Reading("mcu.firmware", "The MCU's firmware", Kind::kText, Read<KAVO_ROLU_VPM_GetFWVersion>),
      Reading("mcu.platform", "The platform's name, as the MCU tells it", Kind::kText, McuPlatform),
      Number("mcu.keep-alive-mode", "Keep-alive mode; the MCU defines what the values do", 0, 9,
             Read<KAVO_ROLU_VPM_GetKeepAliveMode>, Write<KAVO_ROLU_VPM_SetKeepAliveMode>),
      Number("mcu.at-mode", "AT mode; the MCU defines what the values do", 0, 9,
             Read<KAVO_ROLU_VPM_GetATMode>, Write<KAVO_ROLU_VPM_SetATMode>),
  };
}

std::vector<Setting> BatterySettings() {
  return {
      Reading("battery.voltage", "The car battery's voltage now", Kind::kVolts,
              Read<KAVO_ROLU_VPM_GetCarBatteryVoltage>, "V"),
      Reading("battery.12v.range", "The MCU's battery range, start, middle and end, of a 12 V system",
              Kind::kList, Read<GetBatteryRange<CAR_BATTERY_MODE_12V>>, "V"),
      Reading("battery.24v.range", "The same of a 24 V system", Kind::kList,
              Read<GetBatteryRange<CAR_BATTERY_MODE_24V>>, "V"),
      {.name = "battery.mode",
       .help = "The vehicle's battery system; a change switches both protections off",
       .kind = Kind::kChoice,
       .choices = {"12V", "24V"},
       .read = Read<KAVO_ROLU_VPM_GetCurrentCarBatteryMode>,
       .write = SetBatteryMode,
       .asks = AsksFirst::kAlways,
       .consequence = "switches the pre-boot and the low-battery protection off until they are switched on"},
      Threshold<KAVO_ROLU_VPM_GetPrebootThresholdFor12VSystem, KAVO_ROLU_VPM_SetPrebootThresholdFor12VSystem>(
          "battery.12v.preboot-threshold", "Below this a computer on a 12 V system does not start"),
      Threshold<KAVO_ROLU_VPM_GetLBPThresholdFor12VSystem, KAVO_ROLU_VPM_SetLBPThresholdFor12VSystem>(
          "battery.12v.lbp-threshold", "At this a running computer on a 12 V system is shut down"),
      Threshold<KAVO_ROLU_VPM_GetPrebootThresholdFor24VSystem, KAVO_ROLU_VPM_SetPrebootThresholdFor24VSystem>(
          "battery.24v.preboot-threshold", "Below this a computer on a 24 V system does not start"),
      Threshold<KAVO_ROLU_VPM_GetLBPThresholdFor24VSystem, KAVO_ROLU_VPM_SetLBPThresholdFor24VSystem>(
          "battery.24v.lbp-threshold", "At this a running computer on a 24 V system is shut down"),
      Delay<KAVO_ROLU_VPM_GetLBPLowDelay, KAVO_ROLU_VPM_SetLBPLowDelay>(
          "battery.low-event-delay", "From a low car battery to the power-off warning"),
      Delay<KAVO_ROLU_VPM_GetLBPLowHardDelay, KAVO_ROLU_VPM_SetLBPLowHardDelay>(
          "battery.low-hard-off-delay", "From a low car battery to the power being cut"),
      Switch<KAVO_ROLU_VPM_GetPrebootLBPStatus, KAVO_ROLU_VPM_SetPrebootLBPStatus>(
          "battery.preboot", "The protection that keeps a computer from starting on a low battery",
          AsksFirst::kSwitchingOff, "switches the pre-boot protection off"),
      Switch<KAVO_ROLU_VPM_GetLBPStatus, KAVO_ROLU_VPM_SetLBPStatus>(
          "battery.lbp", "The protection that shuts a running computer down on a low battery",
          AsksFirst::kSwitchingOff, "switches the low-battery protection off"),
  };
}

std::vector<Setting> PowerSettings() {
  return {
      Reading("ignition.state", "Whether the ignition is on", Kind::kFlag,
              ReadFlag<KAVO_ROLU_VPM_GetIgnitionStatus>),
      Number("ignition.mode", "How the MCU handles the ignition; it defines what the modes do", 1, 2,
             Read<KAVO_ROLU_VPM_GetIgnitionMode>, Write<KAVO_ROLU_VPM_SetIgnitionMode>),
      Delay<KAVO_ROLU_VPM_GetIgnOnDelay, KAVO_ROLU_VPM_SetIgnOnDelay>(
          "ignition.on-delay", "From ignition on to the computer being switched on"),
      Delay<KAVO_ROLU_VPM_GetIgnOffEventDelay, KAVO_ROLU_VPM_SetIgnOffEventDelay>(
          "ignition.off-event-delay", "From ignition off to the power-off warning"),
      Delay<KAVO_ROLU_VPM_GetIgnHardOffDelay, KAVO_ROLU_VPM_SetIgnHardOffDelay>(
          "ignition.hard-off-delay", "From ignition off to the power being cut"),
      Delay<KAVO_ROLU_VPM_GetIgnSuspendHardOffDelay, KAVO_ROLU_VPM_SetIgnSuspendHardOffDelay>(
          "ignition.suspend-hard-off-delay", "The same for a suspended computer"),
      Delay<KAVO_ROLU_VPM_GetPrePowerOffAlarmDelay, KAVO_ROLU_VPM_SetPrePowerOffAlarmDelay>(
          "poweroff.warning-delay", "From the power-off warning to the power-off"),
      Switch<KAVO_ROLU_VPM_GetPrePowerOffAlarm, KAVO_ROLU_VPM_SetPrePowerOffAlarm>(
          "poweroff.warning", "Whether the MCU warns before a power-off", AsksFirst::kSwitchingOff,
          "switches the warning before a power-off off"),
      ShutdownSource<SHUTDOWN_SOURCE_0>("shutdown.source-0"),
      ShutdownSource<SHUTDOWN_SOURCE_1>("shutdown.source-1"),
      Delay<KAVO_ROLU_VPM_GetForceShutDownDelay, KAVO_ROLU_VPM_SetForceShutDownDelay>(
          "shutdown.forced-delay", "The delay of the forced shutdown"),
      Switch<KAVO_ROLU_VPM_GetForceShutDown, KAVO_ROLU_VPM_SetForceShutDown>(
          "shutdown.forced", "Whether the forced shutdown is on", AsksFirst::kSwitchingOn,
          "switches the forced shutdown on, which cuts the power after its delay"),
      Reading("wakeup.last", "What woke the computer last", Kind::kText,
              Read<KAVO_ROLU_VPM_GetLastWakeupSource>),
      WakeupSource<WAKEUP_SOURCE_0>("wakeup.source-0"),
      WakeupSource<WAKEUP_SOURCE_1>("wakeup.source-1"),
      WakeupSource<WAKEUP_SOURCE_2>("wakeup.source-2"),
      WakeupSource<WAKEUP_SOURCE_3>("wakeup.source-3"),
      WakeupSource<WAKEUP_SOURCE_4>("wakeup.source-4"),
      WakeupSource<WAKEUP_SOURCE_5>("wakeup.source-5"),
      WakeupSource<WAKEUP_SOURCE_10>("wakeup.source-10"),
  };
}

std::vector<Setting> ClockAndBackupSettings() {
  return {
      Reading("clock.time", "The MCU's clock; 'rolu clock' sets it", Kind::kText,
              Read<KAVO_ROLU_VPM_GetRTCTime>),
      {.name = "alarm.mode",
       .help = "How often the wake-up alarm comes",
       .kind = Kind::kChoice,
       .choices = {"hourly", "daily", "weekly"},
       .read = ReadAs<GetAlarm, AlarmMode>,
       .write = SetAlarmMode},
      Number("alarm.weekday", "The day of a weekly alarm; which day is 0 is the MCU's definition", 0, 6,
             ReadAs<GetAlarm, AlarmWeekday>, SetAlarmWeekday),
      {.name = "alarm.time",
       .help = "The wake-up alarm's time; an hourly alarm uses the minute only",
       .kind = Kind::kTimeOfDay,
       .read = ReadAs<GetAlarm, AlarmTime>,
       .write = SetAlarmTime},
      Switch<KAVO_ROLU_VPM_GetAlarmActive, KAVO_ROLU_VPM_SetAlarmActive>(
          "alarm.active", "Whether the wake-up alarm is on (it is wake-up source 6)"),
      Reading("backup.voltage", "The backup battery's voltage", Kind::kVolts,
              Read<KAVO_ROLU_VPM_GetBackupBatteryVoltage>, "V"),
      Reading("backup.charge", "Its charge", Kind::kNumber,
              Read<KAVO_ROLU_VPM_GetBackupBatteryPercentageOfCharge>, "%"),
      Reading("backup.capacity", "Its remaining capacity", Kind::kNumber,
              Read<KAVO_ROLU_VPM_GetBackupBatteryRemainingCapacity>, kMcuUnits),
      Reading("backup.temperature", "Its temperature", Kind::kCelsius,
              ReadAs<KAVO_ROLU_VPM_GetBackupBatteryTemperture, Celsius>, "degC"),
      Reading("backup.remaining-time", "How long it will last", Kind::kNumber,
              Read<KAVO_ROLU_VPM_GetBackupBatteryRemainingTime>, kMcuUnits),
      Reading("backup.time-to-full", "How long it needs to be full", Kind::kNumber,
              Read<KAVO_ROLU_VPM_GetBackupBatteryTimeToFull>, kMcuUnits),
      Reading("backup.info", "Its information number; the meaning is the MCU's", Kind::kNumber,
              ReadAs<KAVO_ROLU_VPM_GetBackupBatteryInfo, InfoNumber>),
      Reading("backup.flags", "The bits that are set in its status word", Kind::kList,
              ReadAs<KAVO_ROLU_VPM_GetBackupBatteryInfo, SetFlags>),
  };
}

std::vector<Setting> DeviceSettings() {
  return {
      {.name = "watchdog.time",
       .help = "The time in which the watchdog must be fed",
       .family = Family::kWatchdog,
       .unit = kMcuUnits,
       .minimum = 1,
       .maximum = 65535,
       .read = Read<KAVO_ROLU_WD_GetTime>,
       .write = Write<KAVO_ROLU_WD_SetTime>},
      Reading("gsensor.sample", "The acceleration now: x, y and z", Kind::kList,
              Read<KAVO_ROLU_GSENSOR_GetData>, kSensorUnits, Family::kGsensor),
      Number("gsensor.resolution", "Resolution code; the MCU defines what the codes mean", 0, 3,
             Read<KAVO_ROLU_GSENSOR_GetResolution>, Write<KAVO_ROLU_GSENSOR_SetResolution>, Family::kGsensor),
      {.name = "gsensor.alarm-threshold",
       .help = "Acceleration above this is an alarm",
       .family = Family::kGsensor,
       .unit = kSensorUnits,
       .minimum = 2000,
       .maximum = 15000,
       .rounding = kThresholdStep,
       .read = Read<KAVO_ROLU_GSENSOR_GetAlarmThreshold>,
       .write = Write<KAVO_ROLU_GSENSOR_SetAlarmThreshold>},
      {.name = "gsensor.wakeup-threshold",
       .help = "Acceleration above this wakes the computer",
       .family = Family::kGsensor,
       .unit = kSensorUnits,
       .minimum = 63,
       .maximum = 15999,
       .rounding = kThresholdStep,
       .read = Read<KAVO_ROLU_GSENSOR_GetWakeupThreshold>,
       .write = Write<KAVO_ROLU_GSENSOR_SetWakeupThreshold>},
      Peripheral<PERIPHERAL_TYPE_MCU_SWITCH>("peripheral.mcu-switch", "The switch that the MCU holds"),
      Peripheral<PERIPHERAL_TYPE_WLAN>("peripheral.wlan", "The wireless network interface"),
      Peripheral<PERIPHERAL_TYPE_GPS>("peripheral.gps", "The power of the GPS receiver"),
      Number("display.backlight", "The backlight's level", 0, 10, Read<KAVO_ROLU_DISPLAY_GetBright>,
             Write<KAVO_ROLU_DISPLAY_SetBright>, Family::kCore),
      Reading("light.level", "The ambient light", Kind::kNumber, Read<KAVO_ROLU_LIGHTSENSOR_GetStatus>, "lux",
              Family::kCore),
      Reading("pins.inputs", "The two digital inputs, 1 is high", Kind::kList, InputPins, {}, Family::kCore),
  };
}

}  // namespace

const std::vector<Setting>& Settings() {
  static const std::vector<Setting> settings = [] {
    std::vector<Setting> all;
    for (const auto part :
         {BoardSettings, BatterySettings, PowerSettings, ClockAndBackupSettings, DeviceSettings}) {
      for (Setting& setting : part()) all.push_back(std::move(setting));
    }
    return all;
  }();
  return settings;
}

}  // namespace rolu
