#include <fmt/format.h>

#include <cmath>
#include <string>

#include "soak/calls.h"

namespace rolu_soak {
namespace {

pthread_cond_t alarm_event = PTHREAD_COND_INITIALIZER;

Outcome SwitchWatchdog(Lane& lane) {
  const bool on = lane.Draw(2) != 0;
  const ROLU_STATUS status = KAVO_ROLU_WD_Enabled(on);
  return {status, lane.LastCommand() == (on ? "WDTE" : "WDTD")};
}

Outcome ReadWatchdogRange(Lane&) {
  unsigned long lowest = 0;
  unsigned long highest = 0;
  const ROLU_STATUS status = KAVO_ROLU_WD_GetRange(&lowest, &highest);
  return {status, lowest == 1 && highest == 65535};
}

constexpr double kGravityUnit = 3.90625;

std::uint64_t RawAxis(std::int32_t scaled) {
  return static_cast<std::uint64_t>(std::llround((scaled) / kGravityUnit)) & 0xFFFFU;
}

Outcome ReadSample(Lane& lane) {
  ROLU_GSENSOR_DATA sample{};
  const ROLU_STATUS status = KAVO_ROLU_GSENSOR_GetData(&sample);
  return {status,
          (RawAxis(sample.x) << 32U | RawAxis(sample.y) << 16U | RawAxis(sample.z)) == lane.Number("GSV")};
}

Call ReadsThreshold(ROLU_STATUS (*get)(int*), const char* code) {
  return Reads(get, code, [](int value, std::uint64_t number) {
    return value == static_cast<int>((number * 125 + 1) / 2);
  });
}

Call OrdersThreshold(ROLU_STATUS (*set)(int), const char* prefix) {
  return [=](Lane& lane) {
    const std::uint32_t steps = 32 + lane.Draw(200);
    const ROLU_STATUS status = set(static_cast<int>((steps * 125 + 1) / 2));
    return Outcome{status, lane.LastCommand() == fmt::format("{}{:02X}", prefix, steps)};
  };
}

Outcome SwitchAlarm(Lane& lane) {
  const bool on = lane.Draw(2) != 0;
  const ROLU_STATUS status = KAVO_ROLU_GSENSOR_AlarmEnabled(on);
  const std::string command = lane.LastCommand();
  // That it is on is known without asking.
  if (status == ROLU_STATUS_GSENSOR_ALARM_ALREADY_ENABLED && on)
    return {ROLU_STATUS_SUCCESS, command.empty()};
  return {status, command == (on ? "ARGI01" : "ARGI00")};
}

constexpr unsigned int kAxisBits = 15;
constexpr std::uint32_t kAxisMask = (1U << kAxisBits) - 1;

Outcome TakeAlarmSample(Lane&) {
  static std::uint32_t newest = 0;  // of one thread only
  ROLU_GSENSOR_DATA sample{};
  const ROLU_STATUS status = KAVO_ROLU_GSENSOR_GetAlarmData(&sample);
  if (status == ROLU_STATUS_GSENSOR_NO_ALARM_DATA) return {ROLU_STATUS_SUCCESS, true};
  if (status != ROLU_STATUS_SUCCESS) return {status, false};
  const auto high = static_cast<std::uint32_t>(RawAxis(sample.x));
  const auto low = static_cast<std::uint32_t>(RawAxis(sample.y));
  const std::uint32_t number = high << kAxisBits | low;
  const bool whole = RawAxis(sample.z) == (high ^ low);
  const bool in_order = number > newest && number <= last_alarm_sent;
  newest = number;
  return {status, whole && in_order};
}

// What this thread switched on or off last; nobody else does.
Call SwitchesAndReads(PERIPHERAL_TYPE type) {
  return [type](Lane& lane) {
    const char state = lane.Draw(2) != 0 ? 1 : 0;
    ROLU_STATUS status = KAVO_ROLU_PERIPHERALCTRL_SetPeripheralControl(type, state);
    char read = 2;
    if (status == ROLU_STATUS_SUCCESS) status = KAVO_ROLU_PERIPHERALCTRL_GetPeripheralControl(type, &read);
    return Outcome{status, read == state};
  };
}

Outcome SetMcuSwitch(Lane& lane) {
  const bool on = lane.Draw(2) != 0;
  const ROLU_STATUS status =
      KAVO_ROLU_PERIPHERALCTRL_SetPeripheralControl(PERIPHERAL_TYPE_MCU_SWITCH, on ? 1 : 0);
  return {status, lane.LastCommand() == (on ? "MCS01" : "MCS00")};
}

Outcome ReadMcuSwitch(Lane& lane) {
  char on = 0;
  const ROLU_STATUS status = KAVO_ROLU_PERIPHERALCTRL_GetPeripheralControl(PERIPHERAL_TYPE_MCU_SWITCH, &on);
  return {status, static_cast<std::uint64_t>(on) == lane.Number("MCG")};
}

std::vector<Operation> OtherOperations() {
  return {
      {"WD_GetTime", kWatchdog, kLaneWatchdog, kCommand, ReadsWord(KAVO_ROLU_WD_GetTime, "WDTG")},
      {"WD_SetTime", kWatchdog, kLaneWatchdog, kCommand50,
       Orders(KAVO_ROLU_WD_SetTime, 1, 65535, "WDTS{:04X}")},
      {"WD_Trigger", kWatchdog, kLaneWatchdog, kCommand, Order(KAVO_ROLU_WD_Trigger, "WDTR")},
      {"WD_Enabled", kWatchdog, kLaneWatchdog, kCommand, SwitchWatchdog},
      {"WD_GetRange", kWatchdog, kLaneWatchdog, kNothing, ReadWatchdogRange, {}, false},
      {"GSENSOR_GetData", kSensor, kLaneSensor, kCommand, ReadSample},
      {"GSENSOR_GetResolution", kSensor, kLaneSensor, kCommand,
       ReadsWord(KAVO_ROLU_GSENSOR_GetResolution, "GSRG")},
      {"GSENSOR_SetResolution", kSensor, kLaneSensor, kCommand50,
       Orders(KAVO_ROLU_GSENSOR_SetResolution, 0, 4, "GSRS{:02X}")},
      {"GSENSOR_AlarmEnabled", kSensor, kLaneSensor, kCommand, SwitchAlarm},
      {"GSENSOR_SetAlarmEvent", kSensor, kLaneThresholds, kInnerLock,
       Registers(KAVO_ROLU_GSENSOR_SetAlarmEvent, alarm_event)},
      {"GSENSOR_GetAlarmData", kSensor, kLaneThresholds, kInnerLockInTime, TakeAlarmSample},
      {"GSENSOR_GetAlarmThreshold", kSensor, kLaneThresholds, kCommand,
       ReadsThreshold(KAVO_ROLU_GSENSOR_GetAlarmThreshold, "GSIG")},
      {"GSENSOR_SetAlarmThreshold", kSensor, kLaneThresholds, kCommand50,
       OrdersThreshold(KAVO_ROLU_GSENSOR_SetAlarmThreshold, "GSIS")},
      {"GSENSOR_GetWakeupThreshold", kSensor, kLaneThresholds, kCommand,
       ReadsThreshold(KAVO_ROLU_GSENSOR_GetWakeupThreshold, "GSWG")},
      {"GSENSOR_SetWakeupThreshold", kSensor, kLaneThresholds, kCommand50,
       OrdersThreshold(KAVO_ROLU_GSENSOR_SetWakeupThreshold, "GSWS")},
      {"PERIPHERALCTRL_SetPeripheralControl", kPeripherals, kLanePeripherals, kCommand500, SetMcuSwitch},
      {"PERIPHERALCTRL_GetPeripheralControl", kPeripherals, kLanePeripherals, kCommand, ReadMcuSwitch},
      {"PERIPHERALCTRL_GetPeripheralControl", kPeripherals, kLanePeripherals, kDevice,
       SwitchesAndReads(PERIPHERAL_TYPE_GPS)},
      {"PERIPHERALCTRL_GetPeripheralControl", kPeripherals, kLanePeripherals, kShellCommand,
       SwitchesAndReads(PERIPHERAL_TYPE_WLAN)},
  };
}

}  // namespace

std::atomic<std::uint32_t> last_alarm_sent{0};

std::string AlarmMessage(std::uint32_t number) {
  const std::uint32_t high = number >> kAxisBits & kAxisMask;
  const std::uint32_t low = number & kAxisMask;
  return fmt::format("[GI:{:04X}{:04X}{:04X}]\r\n", high, low, high ^ low);
}

const std::vector<FamilyCalls>& Families() {
  static const std::vector<FamilyCalls> families = {
      {"VPM",
       kLaneDelays,
       {"VPM_Initialize", kVpm, kLaneDelays, kLinkAndSixCommands,
        [](Lane&) {
          return Outcome{KAVO_ROLU_VPM_Initialize(0), true};
        }},
       {"VPM_Deinitialize", kVpm, kLaneDelays, kClosing, Plain(KAVO_ROLU_VPM_Deinitialize)}},
      {"WD",
       kLaneWatchdog,
       {"WD_Initialize", kWatchdog, kLaneWatchdog, kLinkAndCommand,
        [](Lane&) {
          return Outcome{KAVO_ROLU_WD_Initialize(0), true};
        }},
       {"WD_Deinitialize", kWatchdog, kLaneWatchdog, kClosing, Plain(KAVO_ROLU_WD_Deinitialize)}},
      {"GSENSOR",
       kLaneSensor,
       {"GSENSOR_Initialize", kSensor, kLaneSensor, kLinkAndTwoCommands,
        [](Lane&) {
          return Outcome{KAVO_ROLU_GSENSOR_Initialize(0), true};
        }},
       {"GSENSOR_Deinitialize", kSensor, kLaneSensor, kTwoCommandsAndClosing,
        Plain(KAVO_ROLU_GSENSOR_Deinitialize), "ARGI"}},
      {"PERIPHERALCTRL",
       kLanePeripherals,
       {"PERIPHERALCTRL_Initialize", kPeripherals, kLanePeripherals, kLinkAndCommand,
        Plain(KAVO_ROLU_PERIPHERALCTRL_Initialize)},
       {"PERIPHERALCTRL_Deinitialize", kPeripherals, kLanePeripherals, kClosing,
        Plain(KAVO_ROLU_PERIPHERALCTRL_Deinitialize)}},
  };
  return families;
}

const std::vector<Operation>& Operations() {
  static const std::vector<Operation> operations = [] {
    std::vector<Operation> all = VpmOperations();
    for (Operation& operation : OtherOperations()) all.push_back(std::move(operation));
    return all;
  }();
  return operations;
}

}  // namespace rolu_soak
