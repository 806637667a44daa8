// The power manager's identity and clock, and the other families.
#include "tests/oracle/operations.h"
#include "tests/oracle/vpm_calls.h"

namespace rolu_test {
namespace {

ROLU_STATUS SetAlarm(void*) {
  return KAVO_ROLU_VPM_SetAlarmTime(ALARM_MODE_DAILY, {5, 13, 30});
}
ROLU_STATUS SetMcuSwitch(void*) {
  return KAVO_ROLU_PERIPHERALCTRL_SetPeripheralControl(PERIPHERAL_TYPE_MCU_SWITCH, 1);
}
ROLU_STATUS GetMcuSwitch(void* output) {
  return KAVO_ROLU_PERIPHERALCTRL_GetPeripheralControl(PERIPHERAL_TYPE_MCU_SWITCH,
                                                       static_cast<char*>(output));
}

Bytes Number(int32_t number) {
  return Written(number);
}

// A G-sensor register.
CallRow GivesRegister(std::string name, Call call, const char* answer, int32_t value, std::string wire) {
  return OrUnreadable(Gives(std::move(name), std::move(call), {answer}, Number(value), std::move(wire)),
                      ROLU_STATUS_GSENSOR_INVALID_REPLY);
}

}  // namespace

const std::vector<CallRow>& IdentityOperations() {
  static const std::vector<CallRow> operations = {
      Gives("VPM_GetFWVersion", Into(KAVO_ROLU_VPM_GetFWVersion), {}, Characters("*VER:  1. 26*", 32)),
      Gives("VPM_GetPlatformName", Into(KAVO_ROLU_VPM_GetPlatformName), {"*PLT:ABCDEFGHIJKL*"},
            Characters("ABCDEFGHIJKL", 13), "ATF1\r"),
  };
  return operations;
}

const std::vector<CallRow>& ClockOperations() {
  constexpr VPM_RTC_TIME kTime = {14, 7, 25, 5, 13, 45, 30};
  static const std::vector<CallRow> operations = {
      // The one command that is answered with two lines.
      Orders("VPM_SetRTCTime", With(KAVO_ROLU_VPM_SetRTCTime, kTime), {rolu_sim::Reply::Lines({"OK", "OK"})},
             "RTCS0E0719050D2D1E\r"),
      Gives("VPM_GetRTCTime", Into(KAVO_ROLU_VPM_GetRTCTime), {"0E0719050D2D1E"}, Written(kTime), "RTCG\r"),
      Orders("VPM_SetAlarmTime", SetAlarm, {"OK"}, "RTASA0CB0D\r", 150),
      Gives("VPM_GetAlarmTime", GetAlarm, {"A0CB0D"}, Written(ALARM_MODE_DAILY, VPM_ALARM_TIME{5, 13, 30}),
            "RTAG\r"),
  };
  return operations;
}

const std::vector<CallRow>& WatchdogOperations() {
  static const std::vector<CallRow> operations = {
      Orders("WD_Enabled on", With(KAVO_ROLU_WD_Enabled, true), {"OK"}, "WDTE\r", 0),
      Orders("WD_Enabled off", With(KAVO_ROLU_WD_Enabled, false), {"OK"}, "WDTD\r", 0),
      Orders("WD_Trigger", Plain(KAVO_ROLU_WD_Trigger), {"OK"}, "WDTR\r", 0),
      Orders("WD_SetTime", With(KAVO_ROLU_WD_SetTime, 300), {"OK"}, "WDTS012C\r"),
      Gives("WD_GetTime", Into(KAVO_ROLU_WD_GetTime), {"012C"}, Written(static_cast<unsigned short>(300)),
            "WDTG\r"),
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
      OrUnreadable(Gives("GSENSOR_GetData", Into(KAVO_ROLU_GSENSOR_GetData), {"V0001FFFF0100"},
                         Written(int32_t{4}, int32_t{-3}, int32_t{1000}), "GSV\r"),
                   ROLU_STATUS_GSENSOR_INVALID_REPLY),
      GivesRegister("GSENSOR_GetResolution", Into(KAVO_ROLU_GSENSOR_GetResolution), "02", 2, "GSRG\r"),
      Orders("GSENSOR_SetResolution", With(KAVO_ROLU_GSENSOR_SetResolution, 3), {"OK"}, "GSRS03\r"),
      alarm_on,
      Orders("GSENSOR_AlarmEnabled off", switch_alarm_off, {"OK"}, "ARGI00\r", 0),
      GivesRegister("GSENSOR_GetAlarmThreshold", Into(KAVO_ROLU_GSENSOR_GetAlarmThreshold), "21", 2063,
                    "GSIG\r"),
      Orders("GSENSOR_SetAlarmThreshold", With(KAVO_ROLU_GSENSOR_SetAlarmThreshold, 2000), {"OK"},
             "GSIS20\r"),
      GivesRegister("GSENSOR_GetWakeupThreshold", Into(KAVO_ROLU_GSENSOR_GetWakeupThreshold), "FF", 15938,
                    "GSWG\r"),
      Orders("GSENSOR_SetWakeupThreshold", With(KAVO_ROLU_GSENSOR_SetWakeupThreshold, 63), {"OK"},
             "GSWS01\r"),
  };
  return operations;
}

const std::vector<CallRow>& PeripheralOperations() {
  static const std::vector<CallRow> operations = {
      Orders("PERIPHERALCTRL_SetPeripheralControl", SetMcuSwitch, {"OK"}, "MCS01\r", 500),
      OrUnreadable(
          Gives("PERIPHERALCTRL_GetPeripheralControl", GetMcuSwitch, {"1"}, Written('\x01'), "MCG\r"),
          ROLU_STATUS_FILE_ACCESS_FAILED),
  };
  return operations;
}

}  // namespace rolu_test
