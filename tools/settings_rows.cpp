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

// A delay of the MCU's.
template <auto Get, auto Set>
Setting Delay(std::string_view name, std::string_view help) {
  return {.name = name,
          .help = help,
          .unit = kMcuUnits,
          .minimum = 1,
          .maximum = 65535,
          .read = Number<Get>,
          .write = SetNumber<Set>};
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
          .read = Voltage<Get>,
          .write = SetVoltage<Set>,
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
          .read = Flag<Get>,
          .write = SetFlag<Set>,
          .asks = asks,
          .consequence = consequence};
}

template <WAKEUP_SOURCE Source>
Setting WakeupSource(std::string_view name) {
  return {.name = name,
          .help = "Whether this cause may wake the computer; the MCU defines what it is",
          .kind = Kind::kFlag,
          .read = FlagOf<KAVO_ROLU_VPM_GetWakeupSourceControlStatus, Source>,
          .write = SetFlagOf<KAVO_ROLU_VPM_SetWakeupSourceControlStatus, Source>};
}

template <SHUTDOWN_SOURCE Source>
Setting ShutdownSource(std::string_view name) {
  return {.name = name,
          .help = "Whether this cause may shut the computer down; the MCU defines what it is",
          .kind = Kind::kFlag,
          .read = FlagOf<KAVO_ROLU_VPM_GetShutdownSourceControlStatus, Source>,
          .write = SetFlagOf<KAVO_ROLU_VPM_SetShutdownSourceControlStatus, Source>};
}

// A switched peripheral keeps its state, but is a switch of the moment: not saved.
template <PERIPHERAL_TYPE Type>
Setting Peripheral(std::string_view name, std::string_view help) {
  return {.name = name,
          .help = help,
          .family = Family::kPeripherals,
          .kind = Kind::kFlag,
          .read = FlagOf<KAVO_ROLU_PERIPHERALCTRL_GetPeripheralControl, Type>,
          .write = SetFlagOf<KAVO_ROLU_PERIPHERALCTRL_SetPeripheralControl, Type>,
          .saved = false};
}

std::vector<Setting> BoardSettings() {
  return {
      {.name = "board.machine",
       .help = "The processor, as the kernel names it",
       .family = Family::kCore,
       .kind = Kind::kText,
       .read = Machine},
      {.name = "board.kernel",
       .help = "The kernel's release",
       .family = Family::kCore,
       .kind = Kind::kText,
       .read = KernelRelease},
      {.name = "board.library",
       .help = "The library's interface version",
       .family = Family::kCore,
       .kind = Kind::kText,
       .read = LibraryVersion},
      {.name = "mcu.firmware", .help = "The MCU's firmware", .kind = Kind::kText, .read = Firmware},
      {.name = "mcu.platform",
       .help = "The platform's name, as the MCU tells it",
       .kind = Kind::kText,
       .read = McuPlatform},
      {.name = "mcu.keep-alive-mode",
       .help = "Keep-alive mode; the MCU defines what the values do",
       .maximum = 9,
       .read = Number<KAVO_ROLU_VPM_GetKeepAliveMode>,
       .write = SetNumber<KAVO_ROLU_VPM_SetKeepAliveMode>},
      {.name = "mcu.at-mode",
       .help = "AT mode; the MCU defines what the values do",
       .maximum = 9,
       .read = Number<KAVO_ROLU_VPM_GetATMode>,
       .write = SetNumber<KAVO_ROLU_VPM_SetATMode>},
  };
}

std::vector<Setting> BatterySettings() {
  return {
      {.name = "battery.voltage",
       .help = "The car battery's voltage now",
       .kind = Kind::kVolts,
       .unit = "V",
       .read = Voltage<KAVO_ROLU_VPM_GetCarBatteryVoltage>},
      {.name = "battery.12v.range",
       .help = "The MCU's battery range, start, middle and end, of a 12 V system",
       .kind = Kind::kList,
       .unit = "V",
       .read = BatteryRange<CAR_BATTERY_MODE_12V>},
      {.name = "battery.24v.range",
       .help = "The same of a 24 V system",
       .kind = Kind::kList,
       .unit = "V",
       .read = BatteryRange<CAR_BATTERY_MODE_24V>},
      {.name = "battery.mode",
       .help = "The vehicle's battery system; a change switches both protections off",
       .kind = Kind::kChoice,
       .choices = {"12V", "24V"},
       .read = BatteryMode,
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
      {.name = "ignition.state",
       .help = "Whether the ignition is on",
       .kind = Kind::kFlag,
       .read = Flag<KAVO_ROLU_VPM_GetIgnitionStatus>},
      {.name = "ignition.mode",
       .help = "How the MCU handles the ignition; it defines what the modes do",
       .minimum = 1,
       .maximum = 2,
       .read = Number<KAVO_ROLU_VPM_GetIgnitionMode>,
       .write = SetNumber<KAVO_ROLU_VPM_SetIgnitionMode>},
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
      {.name = "wakeup.last", .help = "What woke the computer last", .kind = Kind::kText, .read = LastWakeup},
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
      {.name = "clock.time",
       .help = "The MCU's clock; 'rolu clock' sets it",
       .kind = Kind::kText,
       .read = ClockTime},
      {.name = "alarm.mode",
       .help = "How often the wake-up alarm comes",
       .kind = Kind::kChoice,
       .choices = {"hourly", "daily", "weekly"},
       .read = AlarmMode,
       .write = SetAlarmMode},
      {.name = "alarm.weekday",
       .help = "The day of a weekly alarm; which day is 0 is the MCU's definition",
       .maximum = 6,
       .read = AlarmWeekday,
       .write = SetAlarmWeekday},
      {.name = "alarm.time",
       .help = "The wake-up alarm's time; an hourly alarm uses the minute only",
       .kind = Kind::kTimeOfDay,
       .read = AlarmTime,
       .write = SetAlarmTime},
      Switch<KAVO_ROLU_VPM_GetAlarmActive, KAVO_ROLU_VPM_SetAlarmActive>(
          "alarm.active", "Whether the wake-up alarm is on (it is wake-up source 6)"),
      {.name = "backup.voltage",
       .help = "The backup battery's voltage",
       .kind = Kind::kVolts,
       .unit = "V",
       .read = Voltage<KAVO_ROLU_VPM_GetBackupBatteryVoltage>},
      {.name = "backup.charge",
       .help = "Its charge",
       .unit = "%",
       .read = Number<KAVO_ROLU_VPM_GetBackupBatteryPercentageOfCharge>},
      {.name = "backup.capacity",
       .help = "Its remaining capacity",
       .unit = kMcuUnits,
       .read = Number<KAVO_ROLU_VPM_GetBackupBatteryRemainingCapacity>},
      {.name = "backup.temperature",
       .help = "Its temperature",
       .kind = Kind::kCelsius,
       .unit = "degC",
       .read = BackupTemperature},
      {.name = "backup.remaining-time",
       .help = "How long it will last",
       .unit = kMcuUnits,
       .read = Number<KAVO_ROLU_VPM_GetBackupBatteryRemainingTime>},
      {.name = "backup.time-to-full",
       .help = "How long it needs to be full",
       .unit = kMcuUnits,
       .read = Number<KAVO_ROLU_VPM_GetBackupBatteryTimeToFull>},
      {.name = "backup.info", .help = "Its information number; the meaning is the MCU's", .read = BackupInfo},
      {.name = "backup.flags",
       .help = "The bits that are set in its status word",
       .kind = Kind::kList,
       .read = BackupFlags},
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
       .read = Number<KAVO_ROLU_WD_GetTime>,
       .write = SetNumber<KAVO_ROLU_WD_SetTime>},
      {.name = "gsensor.sample",
       .help = "The acceleration now: x, y and z",
       .family = Family::kGsensor,
       .kind = Kind::kList,
       .unit = kSensorUnits,
       .read = GsensorSample},
      {.name = "gsensor.resolution",
       .help = "Resolution code; the MCU defines what the codes mean",
       .family = Family::kGsensor,
       .maximum = 3,
       .read = Number<KAVO_ROLU_GSENSOR_GetResolution>,
       .write = SetNumber<KAVO_ROLU_GSENSOR_SetResolution>},
      {.name = "gsensor.alarm-threshold",
       .help = "Acceleration above this is an alarm",
       .family = Family::kGsensor,
       .unit = kSensorUnits,
       .minimum = 2000,
       .maximum = 15000,
       .rounding = kThresholdStep,
       .read = Number<KAVO_ROLU_GSENSOR_GetAlarmThreshold>,
       .write = SetNumber<KAVO_ROLU_GSENSOR_SetAlarmThreshold>},
      {.name = "gsensor.wakeup-threshold",
       .help = "Acceleration above this wakes the computer",
       .family = Family::kGsensor,
       .unit = kSensorUnits,
       .minimum = 63,
       .maximum = 15999,
       .rounding = kThresholdStep,
       .read = Number<KAVO_ROLU_GSENSOR_GetWakeupThreshold>,
       .write = SetNumber<KAVO_ROLU_GSENSOR_SetWakeupThreshold>},
      Peripheral<PERIPHERAL_TYPE_MCU_SWITCH>("peripheral.mcu-switch", "The switch that the MCU holds"),
      Peripheral<PERIPHERAL_TYPE_WLAN>("peripheral.wlan", "The wireless network interface"),
      Peripheral<PERIPHERAL_TYPE_GPS>("peripheral.gps", "The power of the GPS receiver"),
      {.name = "display.backlight",
       .help = "The backlight's level",
       .family = Family::kCore,
       .maximum = 10,
       .read = Number<KAVO_ROLU_DISPLAY_GetBright>,
       .write = SetNumber<KAVO_ROLU_DISPLAY_SetBright>},
      {.name = "light.level",
       .help = "The ambient light",
       .family = Family::kCore,
       .unit = "lux",
       .read = Number<KAVO_ROLU_LIGHTSENSOR_GetStatus>},
      {.name = "pins.inputs",
       .help = "The two digital inputs, 1 is high",
       .family = Family::kCore,
       .kind = Kind::kList,
       .read = InputPins},
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
