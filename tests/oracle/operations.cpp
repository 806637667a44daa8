#include "tests/oracle/operations.h"

#include <pthread.h>

namespace rolu_test {
namespace {

// Brings a family up. Only a command that is not `indifferent` can make it fail.
CallRow ComesUp(std::string name, Call call, std::vector<Answer> answers, std::string wire,
                std::vector<size_t> indifferent) {
  CallRow row = Orders(std::move(name), std::move(call), std::move(answers), std::move(wire), 0);
  row.indifferent = std::move(indifferent);
  row.brings_up = true;
  return row;
}

std::vector<CallRow> AllOf(std::initializer_list<const std::vector<CallRow>*> tables,
                           std::vector<CallRow> more) {
  for (const std::vector<CallRow>* table : tables) {
    for (const CallRow& row : *table) {
      if (!row.wire.empty()) more.push_back(row);
    }
  }
  return more;
}

std::vector<CallRow> VpmOperations() {
  return AllOf({&IdentityOperations(), &PowerOffDelayOperations(), &CarBatteryOperations(),
                &IgnitionAndModeOperations(), &PowerSourceOperations(), &ClockOperations(),
                &BackupBatteryOperations()},
               {ComesUp("VPM_Initialize", With(KAVO_ROLU_VPM_Initialize, 0),
                        {"OK", "*VER:  1. 26*", "0.01582", "0.015385", "02AA02EB030C", "052F05AE05ED"},
                        "Hello\rATF0\rMCVU2\rMCVU3\rMCPR3\rMCPR2\r", {0, 2, 3})});
}

std::vector<CallRow> GSensorAndItsSwitches() {
  CallRow down =
      Orders("GSENSOR_Deinitialize", Plain(KAVO_ROLU_GSENSOR_Deinitialize), {"OK", "OK"}, "ARGI00\rGSF\r", 0);
  down.indifferent = {0};
  return AllOf({&GSensorOperations()}, {ComesUp("GSENSOR_Initialize", With(KAVO_ROLU_GSENSOR_Initialize, 0),
                                                {"OK", "OK"}, "Hello\rGSO\r", {0, 1}),
                                        down});
}

}  // namespace

const std::vector<McuFamily>& McuFamilies() {
  static const std::vector<McuFamily> families = {
      {"VPM_",
       {[] { return KAVO_ROLU_VPM_Initialize(0); }, KAVO_ROLU_VPM_Deinitialize},
       VpmOperations(),
       ROLU_STATUS_INVALID_PARAMETER},
      {"WD_",
       {[] { return KAVO_ROLU_WD_Initialize(0); }, KAVO_ROLU_WD_Deinitialize},
       AllOf({&WatchdogOperations()},
             {ComesUp("WD_Initialize", With(KAVO_ROLU_WD_Initialize, 0), {"OK"}, "Hello\r", {0})}),
       ROLU_STATUS_NULL_POINTER,
       ROLU_STATUS_NULL_POINTER},
      {"GSENSOR_",
       {[] { return KAVO_ROLU_GSENSOR_Initialize(0); }, KAVO_ROLU_GSENSOR_Deinitialize},
       GSensorAndItsSwitches(),
       ROLU_STATUS_NULL_POINTER},
      {"PERIPHERALCTRL_",
       {KAVO_ROLU_PERIPHERALCTRL_Initialize, KAVO_ROLU_PERIPHERALCTRL_Deinitialize},
       AllOf({&PeripheralOperations()},
             {ComesUp("PERIPHERALCTRL_Initialize", Plain(KAVO_ROLU_PERIPHERALCTRL_Initialize), {"OK"},
                      "Hello\r", {0})}),
       ROLU_STATUS_INVALID_PARAMETER},
  };
  return families;
}

std::vector<Operation> AllOperations() {
  std::vector<Operation> operations;
  for (const McuFamily& family : McuFamilies()) {
    for (const CallRow& row : family.operations) operations.push_back({&family, &row});
  }
  return operations;
}

const std::vector<CallRow>& SilentOperations() {
  constexpr ROLU_STATUS kNotSupported = ROLU_STATUS_NOT_SUPPORTED;
  // This mode has no range, whatever the MCU reported when the family came up.
  constexpr auto kNoMode = static_cast<CAR_BATTERY_MODE>(0);
  static pthread_cond_t event = PTHREAD_COND_INITIALIZER;
  const auto get_range = [](void* output) {
    auto* limits = static_cast<unsigned long*>(output);
    return KAVO_ROLU_WD_GetRange(limits, limits + 1);
  };
  const auto get_threshold_info = [](void* output) {
    return KAVO_ROLU_VPM_GetLBPThresholdInfo(kNoMode, static_cast<BATTERY_INFO*>(output));
  };
  static const std::vector<CallRow> operations = {
      IdentityOperations().front(),
      Fails("VPM_GetLibVersion", Into(KAVO_ROLU_VPM_GetLibVersion), {}, kNotSupported),
      Gives("VPM_GetLBPThresholdInfo", get_threshold_info, {}, Written(BATTERY_INFO{})),
      Orders("VPM_SetIgnPowerOffEvent", With(KAVO_ROLU_VPM_SetIgnPowerOffEvent, &event), {}, "", 0),
      Orders("VPM_SetLBPPowerOffEvent", With(KAVO_ROLU_VPM_SetLBPPowerOffEvent, &event), {}, "", 0),
      Orders("VPM_Deinitialize", Plain(KAVO_ROLU_VPM_Deinitialize), {}, "", 0),
      Fails("WD_GetLibVersion", Into(KAVO_ROLU_WD_GetLibVersion), {}, kNotSupported),
      Gives("WD_GetRange", get_range, {}, Written(1UL, 65535UL)),
      Orders("WD_Deinitialize", Plain(KAVO_ROLU_WD_Deinitialize), {}, "", 0),
      Fails("GSENSOR_GetLibVersion", Into(KAVO_ROLU_GSENSOR_GetLibVersion), {}, kNotSupported),
      Fails("GSENSOR_GetAlarmData", Into(KAVO_ROLU_GSENSOR_GetAlarmData), {},
            ROLU_STATUS_GSENSOR_NO_ALARM_DATA),
      Orders("GSENSOR_SetAlarmEvent", With(KAVO_ROLU_GSENSOR_SetAlarmEvent, &event), {}, "", 0),
      Fails("PERIPHERALCTRL_GetLibVersion", Into(KAVO_ROLU_PERIPHERALCTRL_GetLibVersion), {}, kNotSupported),
      Fails("PERIPHERALCTRL_SetRearViewSource", With(KAVO_ROLU_PERIPHERALCTRL_SetRearViewSource, 1), {},
            kNotSupported),
      Fails("PERIPHERALCTRL_GetRearViewSource", Into(KAVO_ROLU_PERIPHERALCTRL_GetRearViewSource), {},
            kNotSupported),
      Fails("PERIPHERALCTRL_SetAutoRearView", With(KAVO_ROLU_PERIPHERALCTRL_SetAutoRearView, 1), {},
            kNotSupported),
      Fails("PERIPHERALCTRL_GetAutoRearView", Into(KAVO_ROLU_PERIPHERALCTRL_GetAutoRearView), {},
            kNotSupported),
      Orders("PERIPHERALCTRL_Deinitialize", Plain(KAVO_ROLU_PERIPHERALCTRL_Deinitialize), {}, "", 0),
  };
  return operations;
}

}  // namespace rolu_test
