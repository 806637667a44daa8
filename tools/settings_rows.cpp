// The rows of the table of settings.

#include "tools/setting_access.h"

namespace rolu {
namespace {

using namespace board_access;  // NOLINT(google-build-using-namespace): the rows below are read as a table

// The largest step to which the MCU rounds a voltage: one unit of the 24 V system.
constexpr double kVoltageStep = 0.016;
// The MCU rounds the G-sensor's thresholds down to multiples of 62.5; the value that reads back is rounded
// too.
constexpr double kThresholdStep = 63;

constexpr std::string_view kSensorUnits = "sensor units";

// A setting that can only be read.
Setting Reading(std::string_view name, std::string_view help, Kind kind, Reader read,
                std::string_view unit = {}, Family family = Family::kVpm) {
  return {.name = name, .help = help, .family = family, .kind = kind, .unit = unit, .read = std::move(read)};
}

// A setting that is a whole number.
Setting Number(std::string_view name, std::string_view help, double minimum, double maximum, Reader read,
               Writer write, Family family = Family::kVpm) {
  return {.name = name,
          .help = help,
          .family = family,
          .minimum = minimum,
          .maximum = maximum,
          .read = std::move(read),
          .write = std::move(write)};
}

// A delay of the MCU.
template <typename Raw>
Setting Delay(std::string_view name, std::string_view help, ROLU_STATUS (*get)(Raw*),
              ROLU_STATUS (*set)(Raw)) {
  return {.name = name,
          .help = help,
          .unit = kMcuUnits,
          .minimum = 1,
          .maximum = 65535,
          .read = Read(get),
          .write = Write(set)};
}

template <typename Raw>
Setting Threshold(std::string_view name, std::string_view help, ROLU_STATUS (*get)(Raw*),
                  ROLU_STATUS (*set)(Raw)) {
  return {.name = name,
          .help = help,
          .kind = Kind::kVolts,
          .unit = "V",
          .minimum = 0,
          .maximum = 100,
          .rounding = kVoltageStep,
          .read = Read(get),
          .write = Write(set),
          .asks = AsksFirst::kAlways,
          .consequence = "moves a threshold of the low-battery protections"};
}

// A setting that is on or off. `asks` and `consequence` say when and why a change must be confirmed.
template <typename Raw>
Setting Switch(std::string_view name, std::string_view help, ROLU_STATUS (*get)(Raw*),
               ROLU_STATUS (*set)(Raw), AsksFirst asks = AsksFirst::kNever,
               std::string_view consequence = {}) {
  return {.name = name,
          .help = help,
          .kind = Kind::kFlag,
          .read = ReadFlag(get),
          .write = Write(set),
          .asks = asks,
          .consequence = consequence};
}

Setting WakeupSource(std::string_view name, WAKEUP_SOURCE source) {
  return {.name = name,
          .help = "Whether this cause may wake the computer; the MCU defines what it is",
          .kind = Kind::kFlag,
          .read = ReadFlagOf(KAVO_ROLU_VPM_GetWakeupSourceControlStatus, source),
          .write = WriteFlagOf(KAVO_ROLU_VPM_SetWakeupSourceControlStatus, source)};
}

Setting ShutdownSource(std::string_view name, SHUTDOWN_SOURCE source) {
  return {.name = name,
          .help = "Whether this cause may shut the computer down; the MCU defines what it is",
          .kind = Kind::kFlag,
          .read = ReadFlagOf(KAVO_ROLU_VPM_GetShutdownSourceControlStatus, source),
          .write = WriteFlagOf(KAVO_ROLU_VPM_SetShutdownSourceControlStatus, source)};
}

// The switch of a peripheral. It is momentary and therefore not saved, although the peripheral keeps its
// state.
Setting Peripheral(std::string_view name, std::string_view help, PERIPHERAL_TYPE type) {
  return {.name = name,
          .help = help,
          .family = Family::kPeripherals,
          .kind = Kind::kFlag,
          .read = ReadFlagOf(KAVO_ROLU_PERIPHERALCTRL_GetPeripheralControl, type),
          .write = WriteFlagOf(KAVO_ROLU_PERIPHERALCTRL_SetPeripheralControl, type),
          .saved = false};
}

ROLU_STATUS GetMachine(char* name) {
  ROLU_PLATFORM_NAME platform{name, nullptr};
  return KAVO_ROLU_CORE_GetPlatformName(&platform);
}

ROLU_STATUS GetKernelRelease(char* release) {
  std::array<char, 128> version{};
  ROLU_IMAGE_INFO info{nullptr, nullptr, release, version.data()};
  return KAVO_ROLU_CORE_GetImageinfo(&info);
}

ROLU_STATUS GetLibraryVersion(char* version) {
  return KAVO_ROLU_CORE_GetLibVersion(static_cast<unsigned char*>(static_cast<void*>(version)));
}

using Pins = std::array<unsigned char, 2>;
ROLU_STATUS GetInputPins(Pins* pins) {
  return KAVO_ROLU_DIO_ReadDIPin(pins->data());
}

std::vector<Setting> BoardSettings() {
  return {
      Reading("board.machine", "The processor, as the kernel names it", Kind::kText, ReadText<65>(GetMachine),
              {}, Family::kCore),
      Reading("board.kernel", "The kernel's release", Kind::kText, ReadText<128>(GetKernelRelease), {},
              Family::kCore),
      Reading("board.library", "The library's interface version", Kind::kText,
              ReadText<18>(GetLibraryVersion), {}, Family::kCore),
      Reading("mcu.firmware", "The MCU's firmware", Kind::kText, Read(KAVO_ROLU_VPM_GetFWVersion)),
      Reading("mcu.platform", "The platform's name, as the MCU tells it", Kind::kText,
              ReadText<16>(KAVO_ROLU_VPM_GetPlatformName)),
      Number("mcu.keep-alive-mode", "Keep-alive mode; the MCU defines what the values do", 0, 9,
             Read(KAVO_ROLU_VPM_GetKeepAliveMode), Write(KAVO_ROLU_VPM_SetKeepAliveMode)),
      Number("mcu.at-mode", "AT mode; the MCU defines what the values do", 0, 9,
             Read(KAVO_ROLU_VPM_GetATMode), Write(KAVO_ROLU_VPM_SetATMode)),
  };
}

std::vector<Setting> BatterySettings() {
  return {
      Reading("battery.voltage", "The car battery's voltage now", Kind::kVolts,
              Read(KAVO_ROLU_VPM_GetCarBatteryVoltage), "V"),
      Reading("battery.12v.range", "The MCU's battery range, start, middle and end, of a 12 V system",
              Kind::kList, ReadBatteryRange(CAR_BATTERY_MODE_12V), "V"),
      Reading("battery.24v.range", "The MCU's battery range of a 24 V system", Kind::kList,
              ReadBatteryRange(CAR_BATTERY_MODE_24V), "V"),
      {.name = "battery.mode",
       .help = "The vehicle's battery system; a change switches both protections off",
       .kind = Kind::kChoice,
       .choices = {"12V", "24V"},
       .read = Read(KAVO_ROLU_VPM_GetCurrentCarBatteryMode),
       .write =
           [](const Value& value) {
             return KAVO_ROLU_VPM_SetCurrentCarBatteryMode(value == "24V" ? CAR_BATTERY_MODE_24V
                                                                          : CAR_BATTERY_MODE_12V);
           },
       .asks = AsksFirst::kAlways,
       .consequence = "switches the pre-boot and the low-battery protection off until they are switched on"},
      Threshold("battery.12v.preboot-threshold",
                "A computer on a 12 V system does not start below this voltage",
                KAVO_ROLU_VPM_GetPrebootThresholdFor12VSystem, KAVO_ROLU_VPM_SetPrebootThresholdFor12VSystem),
      Threshold("battery.12v.lbp-threshold", "A running computer on a 12 V system shuts down at this voltage",
                KAVO_ROLU_VPM_GetLBPThresholdFor12VSystem, KAVO_ROLU_VPM_SetLBPThresholdFor12VSystem),
      Threshold("battery.24v.preboot-threshold",
                "A computer on a 24 V system does not start below this voltage",
                KAVO_ROLU_VPM_GetPrebootThresholdFor24VSystem, KAVO_ROLU_VPM_SetPrebootThresholdFor24VSystem),
      Threshold("battery.24v.lbp-threshold", "A running computer on a 24 V system shuts down at this voltage",
                KAVO_ROLU_VPM_GetLBPThresholdFor24VSystem, KAVO_ROLU_VPM_SetLBPThresholdFor24VSystem),
      Delay("battery.low-event-delay", "From a low car battery to the power-off warning",
            KAVO_ROLU_VPM_GetLBPLowDelay, KAVO_ROLU_VPM_SetLBPLowDelay),
      Delay("battery.low-hard-off-delay", "From a low car battery to the power being cut",
            KAVO_ROLU_VPM_GetLBPLowHardDelay, KAVO_ROLU_VPM_SetLBPLowHardDelay),
      Switch("battery.preboot", "The protection that keeps a computer from starting on a low battery",
             KAVO_ROLU_VPM_GetPrebootLBPStatus, KAVO_ROLU_VPM_SetPrebootLBPStatus, AsksFirst::kSwitchingOff,
             "switches the pre-boot protection off"),
      Switch("battery.lbp", "The protection that shuts a running computer down on a low battery",
             KAVO_ROLU_VPM_GetLBPStatus, KAVO_ROLU_VPM_SetLBPStatus, AsksFirst::kSwitchingOff,
             "switches the low-battery protection off"),
  };
}

std::vector<Setting> PowerSettings() {
  return {
      Reading("ignition.state", "Whether the ignition is on", Kind::kFlag,
              ReadFlag(KAVO_ROLU_VPM_GetIgnitionStatus)),
      Number("ignition.mode", "How the MCU handles the ignition; it defines what the modes do", 1, 2,
             Read(KAVO_ROLU_VPM_GetIgnitionMode), Write(KAVO_ROLU_VPM_SetIgnitionMode)),
      Delay("ignition.on-delay", "From ignition on to the computer being switched on",
            KAVO_ROLU_VPM_GetIgnOnDelay, KAVO_ROLU_VPM_SetIgnOnDelay),
      Delay("ignition.off-event-delay", "From ignition off to the power-off warning",
            KAVO_ROLU_VPM_GetIgnOffEventDelay, KAVO_ROLU_VPM_SetIgnOffEventDelay),
      Delay("ignition.hard-off-delay", "From ignition off to the power being cut",
            KAVO_ROLU_VPM_GetIgnHardOffDelay, KAVO_ROLU_VPM_SetIgnHardOffDelay),
      Delay("ignition.suspend-hard-off-delay", "From ignition off to the power being cut, if suspended",
            KAVO_ROLU_VPM_GetIgnSuspendHardOffDelay, KAVO_ROLU_VPM_SetIgnSuspendHardOffDelay),
      Delay("poweroff.warning-delay", "From the power-off warning to the power-off",
            KAVO_ROLU_VPM_GetPrePowerOffAlarmDelay, KAVO_ROLU_VPM_SetPrePowerOffAlarmDelay),
      Switch("poweroff.warning", "Whether the MCU warns before a power-off",
             KAVO_ROLU_VPM_GetPrePowerOffAlarm, KAVO_ROLU_VPM_SetPrePowerOffAlarm, AsksFirst::kSwitchingOff,
             "switches off the warning before a power-off"),
      ShutdownSource("shutdown.source-0", SHUTDOWN_SOURCE_0),
      ShutdownSource("shutdown.source-1", SHUTDOWN_SOURCE_1),
      Delay("shutdown.forced-delay", "The delay of the forced shutdown", KAVO_ROLU_VPM_GetForceShutDownDelay,
            KAVO_ROLU_VPM_SetForceShutDownDelay),
      Switch("shutdown.forced", "Whether the forced shutdown is on", KAVO_ROLU_VPM_GetForceShutDown,
             KAVO_ROLU_VPM_SetForceShutDown, AsksFirst::kSwitchingOn,
             "switches the forced shutdown on, which cuts the power after its delay"),
      Reading("wakeup.last", "What woke the computer last", Kind::kText,
              Read(KAVO_ROLU_VPM_GetLastWakeupSource)),
      WakeupSource("wakeup.source-0", WAKEUP_SOURCE_0),
      WakeupSource("wakeup.source-1", WAKEUP_SOURCE_1),
      WakeupSource("wakeup.source-2", WAKEUP_SOURCE_2),
      WakeupSource("wakeup.source-3", WAKEUP_SOURCE_3),
      WakeupSource("wakeup.source-4", WAKEUP_SOURCE_4),
      WakeupSource("wakeup.source-5", WAKEUP_SOURCE_5),
      WakeupSource("wakeup.source-10", WAKEUP_SOURCE_10),
  };
}

std::vector<Setting> ClockAndBackupSettings() {
  return {
      Reading("clock.time", "The MCU's clock; 'rolu clock' sets it", Kind::kText,
              Read(KAVO_ROLU_VPM_GetRTCTime)),
      {.name = "alarm.mode",
       .help = "How often the wake-up alarm comes",
       .kind = Kind::kChoice,
       .choices = {"hourly", "daily", "weekly"},
       .read = ReadAs<Alarm>(GetAlarm, AlarmMode),
       .write = WriteAlarm(SetAlarmMode)},
      Number("alarm.weekday", "The day of a weekly alarm; which day is 0 is the MCU's definition", 0, 6,
             ReadAs<Alarm>(GetAlarm, AlarmWeekday), WriteAlarm([](Alarm& alarm, const Value& value) {
               alarm.time.weekday = value.get<std::uint8_t>();
             })),
      {.name = "alarm.time",
       .help = "The wake-up alarm's time; an hourly alarm uses the minute only",
       .kind = Kind::kTimeOfDay,
       .read = ReadAs<Alarm>(GetAlarm, AlarmTime),
       .write = WriteAlarm(SetAlarmTime)},
      Switch("alarm.active", "Whether the wake-up alarm is on (it is wake-up source 6)",
             KAVO_ROLU_VPM_GetAlarmActive, KAVO_ROLU_VPM_SetAlarmActive),
      Reading("backup.voltage", "The backup battery's voltage", Kind::kVolts,
              Read(KAVO_ROLU_VPM_GetBackupBatteryVoltage), "V"),
      Reading("backup.charge", "The backup battery's charge", Kind::kNumber,
              Read(KAVO_ROLU_VPM_GetBackupBatteryPercentageOfCharge), "%"),
      Reading("backup.capacity", "The backup battery's remaining capacity", Kind::kNumber,
              Read(KAVO_ROLU_VPM_GetBackupBatteryRemainingCapacity), kMcuUnits),
      Reading("backup.temperature", "The backup battery's temperature", Kind::kCelsius,
              ReadAs<float>(KAVO_ROLU_VPM_GetBackupBatteryTemperture, Celsius), "degC"),
      Reading("backup.remaining-time", "How long the backup battery will last", Kind::kNumber,
              Read(KAVO_ROLU_VPM_GetBackupBatteryRemainingTime), kMcuUnits),
      Reading("backup.time-to-full", "How long the backup battery charges until full", Kind::kNumber,
              Read(KAVO_ROLU_VPM_GetBackupBatteryTimeToFull), kMcuUnits),
      Reading("backup.info", "The backup battery's information number; the MCU defines it", Kind::kNumber,
              ReadAs<BACKUP_BATTERY_INFO>(KAVO_ROLU_VPM_GetBackupBatteryInfo, InfoNumber)),
      Reading("backup.flags", "The bits that are set in the backup battery's status word", Kind::kList,
              ReadAs<BACKUP_BATTERY_INFO>(KAVO_ROLU_VPM_GetBackupBatteryInfo, SetFlags)),
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
       .read = Read(KAVO_ROLU_WD_GetTime),
       .write = Write(KAVO_ROLU_WD_SetTime)},
      Reading("gsensor.sample", "The acceleration now: x, y and z", Kind::kList,
              Read(KAVO_ROLU_GSENSOR_GetData), kSensorUnits, Family::kGsensor),
      Number("gsensor.resolution", "Resolution code; the MCU defines what the codes mean", 0, 3,
             Read(KAVO_ROLU_GSENSOR_GetResolution), Write(KAVO_ROLU_GSENSOR_SetResolution), Family::kGsensor),
      {.name = "gsensor.alarm-threshold",
       .help = "The G-sensor raises its alarm above this acceleration",
       .family = Family::kGsensor,
       .unit = kSensorUnits,
       .minimum = 2000,
       .maximum = 15000,
       .rounding = kThresholdStep,
       .read = Read(KAVO_ROLU_GSENSOR_GetAlarmThreshold),
       .write = Write(KAVO_ROLU_GSENSOR_SetAlarmThreshold)},
      {.name = "gsensor.wakeup-threshold",
       .help = "The G-sensor wakes the computer above this acceleration",
       .family = Family::kGsensor,
       .unit = kSensorUnits,
       .minimum = 63,
       .maximum = 15999,
       .rounding = kThresholdStep,
       .read = Read(KAVO_ROLU_GSENSOR_GetWakeupThreshold),
       .write = Write(KAVO_ROLU_GSENSOR_SetWakeupThreshold)},
      Peripheral("peripheral.mcu-switch", "The switch that the MCU holds", PERIPHERAL_TYPE_MCU_SWITCH),
      Peripheral("peripheral.wlan", "The wireless network interface", PERIPHERAL_TYPE_WLAN),
      Peripheral("peripheral.gps", "The power of the GPS receiver", PERIPHERAL_TYPE_GPS),
      Number("display.backlight", "The backlight's level", 0, 10, Read(KAVO_ROLU_DISPLAY_GetBright),
             Write(KAVO_ROLU_DISPLAY_SetBright), Family::kCore),
      Reading("light.level", "The ambient light", Kind::kNumber, Read(KAVO_ROLU_LIGHTSENSOR_GetStatus), "lux",
              Family::kCore),
      Reading(kInputPins, "The two digital inputs, 1 is high", Kind::kList,
              ReadAs<Pins>(GetInputPins, [](const Pins& pins) { return pins; }), {}, Family::kCore),
  };
}

}  // namespace

const std::vector<SettingGroup>& SettingGroups() {
  static const std::vector<SettingGroup> groups = {
      {"board", "Board"},
      {"mcu", "Microcontroller (MCU)"},
      {"battery", "Car battery"},
      {"ignition", "Ignition"},
      {"poweroff", "Power-off warning"},
      {"shutdown", "Shutdown"},
      {"wakeup", "Wake-up"},
      {"clock", "Clock"},
      {"alarm", "Wake-up alarm"},
      {"backup", "Backup battery"},
      {"watchdog", "Watchdog"},
      {"gsensor", "G-sensor"},
      {"peripheral", "Peripherals"},
      {"display", "Display"},
      {"light", "Light sensor"},
      {"pins", "Digital pins"},
  };
  return groups;
}

const std::vector<Setting>& Settings() {
  static const std::vector<Setting> settings = [] {
    std::vector<Setting> all;
    for (const auto part :
         {BoardSettings, BatterySettings, PowerSettings, ClockAndBackupSettings, DeviceSettings}) {
      std::ranges::move(part(), std::back_inserter(all));
    }
    return all;
  }();
  return settings;
}

}  // namespace rolu
