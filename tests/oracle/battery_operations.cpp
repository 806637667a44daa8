#include "tests/oracle/operations.h"

namespace rolu_test {
namespace {

Bytes Number(int number) {
  return Written(number);
}
Bytes Flag(char flag) {
  return Written(flag);
}
Call SetMode(int mode) {
  return With(KAVO_ROLU_VPM_SetCurrentCarBatteryMode, mode);
}

}  // namespace

const std::vector<CallRow>& CarBatteryOperations() {
  constexpr ROLU_STATUS kUnknownMode = ROLU_STATUS_VPM_ERROR_REPLY;
  static const std::vector<CallRow> operations = {
      Orders("VPM_SetLBPThresholdFor12VSystem", With(KAVO_ROLU_VPM_SetLBPThresholdFor12VSystem, 11.5F),
             {"OK"}, "MCPS3102EB\r"),
      Orders("VPM_SetLBPThresholdFor24VSystem", With(KAVO_ROLU_VPM_SetLBPThresholdFor24VSystem, 23.5F),
             {"OK"}, "MCPS2105CD\r"),
      Orders("VPM_SetPrebootThresholdFor12VSystem",
             With(KAVO_ROLU_VPM_SetPrebootThresholdFor12VSystem, 11.0F), {"OK"}, "MCPS3002CB\r"),
      Orders("VPM_SetPrebootThresholdFor24VSystem",
             With(KAVO_ROLU_VPM_SetPrebootThresholdFor24VSystem, 23.0F), {"OK"}, "MCPS2005AE\r"),
      Gives("VPM_GetLBPThresholdFor12VSystem", Into(KAVO_ROLU_VPM_GetLBPThresholdFor12VSystem), {"02EB"},
            Written(747 * k12V), "MCPG31\r"),
      Gives("VPM_GetLBPThresholdFor24VSystem", Into(KAVO_ROLU_VPM_GetLBPThresholdFor24VSystem), {"05AE"},
            Written(1454 * k24V), "MCPG21\r"),
      Gives("VPM_GetPrebootThresholdFor12VSystem", Into(KAVO_ROLU_VPM_GetPrebootThresholdFor12VSystem),
            {"02EC"}, Written(748 * k12V), "MCPG30\r"),
      Gives("VPM_GetPrebootThresholdFor24VSystem", Into(KAVO_ROLU_VPM_GetPrebootThresholdFor24VSystem),
            {"05AF"}, Written(1455 * k24V), "MCPG20\r"),
      OrUnreadable(Gives("VPM_GetCarBatteryVoltage 12V", Into(KAVO_ROLU_VPM_GetCarBatteryVoltage),
                         {"03", "0333"}, Written(819 * k12V), "MCBG\rMCVG\r"),
                   kUnknownMode),
      OrUnreadable(Gives("VPM_GetCarBatteryVoltage 24V", Into(KAVO_ROLU_VPM_GetCarBatteryVoltage),
                         {"2", "05AE"}, Written(1454 * k24V), "MCBG\rMCVG\r"),
                   kUnknownMode),
      Orders("VPM_SetCurrentCarBatteryMode 12V", SetMode(3), {"OK", "OK"}, "MCCS00\rMCBS03\r", 100),
      Orders("VPM_SetCurrentCarBatteryMode 24V", SetMode(2), {"OK", "OK"}, "MCCS00\rMCBS02\r", 100),
      OrUnreadable(Gives("VPM_GetCurrentCarBatteryMode", Into(KAVO_ROLU_VPM_GetCurrentCarBatteryMode), {"03"},
                         Written(CAR_BATTERY_MODE_12V), "MCBG\r"),
                   kUnknownMode),
      Orders("VPM_SetLBPStatus", With(KAVO_ROLU_VPM_SetLBPStatus, 1), {"10", "OK"}, "MCCG\rMCCS11\r"),
      Orders("VPM_SetPrebootLBPStatus", With(KAVO_ROLU_VPM_SetPrebootLBPStatus, 0), {"11", "OK"},
             "MCCG\rMCCS01\r"),
      Gives("VPM_GetLBPStatus", Into(KAVO_ROLU_VPM_GetLBPStatus), {"01"}, Flag(1), "MCCG\r"),
      Gives("VPM_GetPrebootLBPStatus", Into(KAVO_ROLU_VPM_GetPrebootLBPStatus), {"01"}, Flag(0), "MCCG\r"),
  };
  return operations;
}

const std::vector<CallRow>& BackupBatteryOperations() {
  // The call writes only the flags that are set: none here.
  CallRow information = Gives("VPM_GetBackupBatteryInfo", Into(KAVO_ROLU_VPM_GetBackupBatteryInfo),
                              {"1F", "0000000000000000"}, Number(31), "B09\rB05\r");
  information.first_output = information.output;
  static const std::vector<CallRow> operations = {
      Gives("VPM_GetBackupBatteryVoltage", Into(KAVO_ROLU_VPM_GetBackupBatteryVoltage), {"1068"},
            Written(4.2F), "B04\r"),
      Gives("VPM_GetBackupBatteryRemainingCapacity", Into(KAVO_ROLU_VPM_GetBackupBatteryRemainingCapacity),
            {"07D0"}, Number(2000), "B08\r"),
      Gives("VPM_GetBackupBatteryPercentageOfCharge", Into(KAVO_ROLU_VPM_GetBackupBatteryPercentageOfCharge),
            {"64"}, Number(100), "B22\r"),
      Gives("VPM_GetBackupBatteryTemperture", Into(KAVO_ROLU_VPM_GetBackupBatteryTemperture), {"0BA6"},
            Written(25.05F), "B03\r"),
      Gives("VPM_GetBackupBatteryRemainingTime", Into(KAVO_ROLU_VPM_GetBackupBatteryRemainingTime), {"FFFF"},
            Number(65535), "B11\r"),
      Gives("VPM_GetBackupBatteryTimeToFull", Into(KAVO_ROLU_VPM_GetBackupBatteryTimeToFull), {"3C"},
            Number(60), "B12\r"),
      information,
  };
  return operations;
}

}  // namespace rolu_test
