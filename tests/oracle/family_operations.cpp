// The operations of the power manager's identity and clock, and of the other families.
#include "tests/oracle/meaning.h"
#include "tests/oracle/operations.h"

namespace rolu_test {
namespace {

ROLU_STATUS SetAlarm(void*) {
  return KAVO_ROLU_VPM_SetAlarmTime(ALARM_MODE_DAILY, {5, 13, 30});
}
// The results of the wake-up alarm's query, one after the other.
struct Alarm {
  ALARM_MODE mode;
  VPM_ALARM_TIME time;
};
ROLU_STATUS GetAlarm(void* output) {
  auto* alarm = static_cast<Alarm*>(output);
  return KAVO_ROLU_VPM_GetAlarmTime(alarm == nullptr ? nullptr : &alarm->mode,
                                    alarm == nullptr ? nullptr : &alarm->time);
}
ROLU_STATUS SetMcuSwitch(void*) {
  return KAVO_ROLU_PERIPHERALCTRL_SetPeripheralControl(PERIPHERAL_TYPE_MCU_SWITCH, 1);
}
ROLU_STATUS GetMcuSwitch(void* output) {
  return KAVO_ROLU_PERIPHERALCTRL_GetPeripheralControl(PERIPHERAL_TYPE_MCU_SWITCH,
                                                       static_cast<char*>(output));
}

bool PlatformName(const std::string& reply, Course& course) {
  course.ending.output = MemoryWith(Characters(FieldOf(reply, 5, 12), 13));
  return true;
}

bool Clock(const std::string& reply, Course& course) {
  Pieces pieces(reply);
  unsigned char fields[7];
  for (unsigned char& field : fields) field = static_cast<unsigned char>(pieces.Number(16, 2).value_or(0));
  return course.Write(fields);
}

bool WakeupAlarm(const std::string& reply, Course& course) {
  unsigned int bytes[3];
  for (size_t i = 0; i < 3; ++i) bytes[i] = static_cast<uint32_t>(NumberOf(FieldOf(reply, 2 * i, 2), 16));
  const auto is_set = [](unsigned int byte, unsigned int bit) { return (byte >> bit) % 2 == 1; };
  const auto value = [](unsigned int byte) { return static_cast<unsigned char>(AlarmFieldOf(byte)); };
  ALARM_MODE mode = ALARM_MODE_NONE;
  if (is_set(bytes[2], 0)) mode = ALARM_MODE_HOURLY;
  if (is_set(bytes[1], 0)) mode = ALARM_MODE_DAILY;
  if (is_set(bytes[0], 0)) mode = ALARM_MODE_WEEKLY;
  // Bit 1 of the hour is the afternoon.
  const int hour = value(bytes[1]) - (is_set(bytes[1], 1) ? 40 : 0);
  return course.Write(mode,
                      VPM_ALARM_TIME{value(bytes[0]), static_cast<unsigned char>(hour), value(bytes[2])});
}

bool Sample(const std::string& reply, Course& course) {
  if (CharacterOf(reply, 0) == 'I') {
    course.ending.status = ROLU_STATUS_GSENSOR_DATA_UNAVAILABLE;
    return true;
  }
  Pieces pieces(reply);
  pieces.Character();
  int32_t axes[3];
  for (int32_t& axis : axes) {
    const std::optional<int> field = pieces.Number(16, 4);
    if (!field) return false;
    axis = ScaledAxis(static_cast<int16_t>(*field));
  }
  return course.Write(axes);
}

// A G-sensor register of two digits. It holds steps of 62.5, or a plain number.
template <typename Value>
CallRow GivesRegister(const char* name, ROLU_STATUS (*get)(Value*), const char* answer, int32_t value,
                      const char* wire, bool is_threshold = true) {
  const Reading reading = [is_threshold](const std::string& reply, Course& course) {
    const std::optional<int> number = Pieces(reply).Number(16, 2);
    if (!number) return false;
    const int32_t steps = static_cast<uint8_t>(*number);
    return course.Write(is_threshold ? (steps * 125 + 1) / 2 : steps);
  };
  return Reads(Gives(name, Into(get), {answer}, Written(value), wire), {reading},
               ROLU_STATUS_GSENSOR_INVALID_REPLY);
}

}  // namespace

const std::vector<CallRow>& IdentityOperations() {
  static const std::vector<CallRow> operations = {
      Gives("VPM_GetFWVersion", Into(KAVO_ROLU_VPM_GetFWVersion), {}, Characters("*VER:  1. 26*", 32)),
      Reads(Gives("VPM_GetPlatformName", Into(KAVO_ROLU_VPM_GetPlatformName), {"*PLT:ABCDEFGHIJKL*"},
                  Characters("ABCDEFGHIJKL", 13), "ATF1\r"),
            {PlatformName}),
  };
  return operations;
}

const std::vector<CallRow>& ClockOperations() {
  constexpr VPM_RTC_TIME kTime = {14, 7, 25, 5, 13, 45, 30};
  static const std::vector<CallRow> operations = {
      // The one command that is answered with two lines.
      Orders("VPM_SetRTCTime", With(KAVO_ROLU_VPM_SetRTCTime, kTime), {rolu_sim::Reply::Lines({"OK", "OK"})},
             "RTCS0E0719050D2D1E\r"),
      Reads(Gives("VPM_GetRTCTime", Into(KAVO_ROLU_VPM_GetRTCTime), {"0E0719050D2D1E"}, Written(kTime),
                  "RTCG\r"),
            {Clock}),
      Orders("VPM_SetAlarmTime", SetAlarm, {"OK"}, "RTASA0CB0D\r", 150),
      Reads(Gives("VPM_GetAlarmTime", GetAlarm, {"A0CB0D"},
                  Written(ALARM_MODE_DAILY, VPM_ALARM_TIME{5, 13, 30}), "RTAG\r"),
            {WakeupAlarm}),
  };
  return operations;
}

const std::vector<CallRow>& WatchdogOperations() {
  static const std::vector<CallRow> operations = {
      Orders("WD_Enabled on", With(KAVO_ROLU_WD_Enabled, true), {"OK"}, "WDTE\r", 0),
      Orders("WD_Enabled off", With(KAVO_ROLU_WD_Enabled, false), {"OK"}, "WDTD\r", 0),
      Orders("WD_Trigger", Plain(KAVO_ROLU_WD_Trigger), {"OK"}, "WDTR\r", 0),
      Orders("WD_SetTime", With(KAVO_ROLU_WD_SetTime, 300), {"OK"}, "WDTS012C\r"),
      Asks("WD_GetTime", KAVO_ROLU_WD_GetTime, "012C", 300, "WDTG\r"),
  };
  return operations;
}

const std::vector<CallRow>& GSensorOperations() {
  const Call switch_alarm_off = With(KAVO_ROLU_GSENSOR_AlarmEnabled, false);
  CallRow alarm_on =
      Orders("GSENSOR_AlarmEnabled on", With(KAVO_ROLU_GSENSOR_AlarmEnabled, true), {"OK"}, "ARGI01\r", 0);
  // The library does not switch on an alarm that is on already.
  alarm_on.undo = switch_alarm_off;
  static const std::vector<CallRow> operations = {
      Reads(Gives("GSENSOR_GetData", Into(KAVO_ROLU_GSENSOR_GetData), {"V0001FFFF0100"},
                  Written(int32_t{4}, int32_t{-3}, int32_t{1000}), "GSV\r"),
            {Sample}, ROLU_STATUS_GSENSOR_INVALID_REPLY),
      GivesRegister("GSENSOR_GetResolution", KAVO_ROLU_GSENSOR_GetResolution, "02", 2, "GSRG\r", false),
      Orders("GSENSOR_SetResolution", With(KAVO_ROLU_GSENSOR_SetResolution, 3), {"OK"}, "GSRS03\r"),
      alarm_on,
      Orders("GSENSOR_AlarmEnabled off", switch_alarm_off, {"OK"}, "ARGI00\r", 0),
      GivesRegister("GSENSOR_GetAlarmThreshold", KAVO_ROLU_GSENSOR_GetAlarmThreshold, "21", 2063, "GSIG\r"),
      Orders("GSENSOR_SetAlarmThreshold", With(KAVO_ROLU_GSENSOR_SetAlarmThreshold, 2000), {"OK"},
             "GSIS20\r"),
      GivesRegister("GSENSOR_GetWakeupThreshold", KAVO_ROLU_GSENSOR_GetWakeupThreshold, "FF", 15938,
                    "GSWG\r"),
      Orders("GSENSOR_SetWakeupThreshold", With(KAVO_ROLU_GSENSOR_SetWakeupThreshold, 63), {"OK"},
             "GSWS01\r"),
  };
  return operations;
}

const std::vector<CallRow>& PeripheralOperations() {
  static const std::vector<CallRow> operations = {
      Orders("PERIPHERALCTRL_SetPeripheralControl", SetMcuSwitch, {"OK"}, "MCS01\r", 500),
      Reads(Gives("PERIPHERALCTRL_GetPeripheralControl", GetMcuSwitch, {"1"}, Written('\1'), "MCG\r"),
            {Switch(0)}, ROLU_STATUS_FILE_ACCESS_FAILED),
  };
  return operations;
}

}  // namespace rolu_test
