#include <algorithm>
#include <cstddef>

#include "tests/oracle/meaning.h"
#include "tests/oracle/operations.h"

namespace rolu_test {
namespace {

Call SetMode(int mode) {
  return With(KAVO_ROLU_VPM_SetCurrentCarBatteryMode, mode);
}

CallRow GivesThreshold(const char* name, ROLU_STATUS (*get)(float*), const char* answer, int steps,
                       float scale, const char* wire) {
  const Reading reading = [scale](const std::string& reply, Course& course) {
    return course.Write(static_cast<float>(static_cast<uint32_t>(NumberOf(reply, 16))) * scale);
  };
  return Reads(Gives(name, Into(get), {answer}, Written(static_cast<float>(steps) * scale), wire), {reading});
}

bool BatterySystem(const std::string& reply, Course& course) {
  const int32_t number = NumberOf(reply, 16);
  if (number != 2 && number != 3) return false;
  course.scale = number == 3 ? k12V : k24V;
  return true;
}

bool BatteryMode(const std::string& reply, Course& course) {
  return BatterySystem(reply, course) && course.Write(NumberOf(reply, 16));
}

bool BatteryVoltage(const std::string& reply, Course& course) {
  return course.Write(static_cast<float>(NumberOf(reply, 16)) * course.scale);
}

// The library sends the MCU's flags back with one of them changed.
Reading ChangesFlag(size_t position, char flag) {
  return [=](const std::string& reply, Course& course) {
    std::string flags = reply;
    flags.resize(std::max(flags.size(), position + 1));
    flags[position] = flag;
    course.next_command = "MCCS" + flags.substr(0, flags.find('\0')) + "\r";
    return true;
  };
}

bool BackupVoltage(const std::string& reply, Course& course) {
  const auto millivolts = static_cast<float>(NumberOf(reply, 16));
  return course.Write(static_cast<float>(static_cast<double>(millivolts) * 0.001));
}

bool BackupTemperature(const std::string& reply, Course& course) {
  const auto tenths_of_kelvin = static_cast<float>(NumberOf(reply, 16));
  return course.Write(static_cast<float>(static_cast<double>(tenths_of_kelvin) * 0.1 - 273.15));
}

// Writes the flags that are set, and no others.
bool BackupFlags(const std::string& reply, Course& course) {
  constexpr struct {
    unsigned int bit;
    size_t place;
  } kFlags[] = {
      {0, offsetof(BACKUP_BATTERY_INFO, status_bit0)},   {1, offsetof(BACKUP_BATTERY_INFO, status_bit1)},
      {2, offsetof(BACKUP_BATTERY_INFO, status_bit2)},   {7, offsetof(BACKUP_BATTERY_INFO, status_bit7)},
      {8, offsetof(BACKUP_BATTERY_INFO, status_bit8)},   {9, offsetof(BACKUP_BATTERY_INFO, status_bit9)},
      {10, offsetof(BACKUP_BATTERY_INFO, status_bit10)}, {11, offsetof(BACKUP_BATTERY_INFO, status_bit11)},
      {14, offsetof(BACKUP_BATTERY_INFO, status_bit14)}, {15, offsetof(BACKUP_BATTERY_INFO, status_bit15)},
  };
  const auto word = static_cast<uint32_t>(NumberOf(reply, 2));
  for (const auto& flag : kFlags) {
    if ((word >> flag.bit) % 2 == 1) course.ending.output.at(flag.place) = 1;
  }
  return true;
}

}  // namespace

const std::vector<CallRow>& CarBatteryOperations() {
  constexpr ROLU_STATUS kUnknownMode = ROLU_STATUS_VPM_ERROR_REPLY;
  const Call get_voltage = Into(KAVO_ROLU_VPM_GetCarBatteryVoltage);
  const std::vector<Reading> voltage = {BatterySystem, BatteryVoltage};
  static const std::vector<CallRow> operations = {
      Orders("VPM_SetLBPThresholdFor12VSystem", With(KAVO_ROLU_VPM_SetLBPThresholdFor12VSystem, 11.5F),
             {"OK"}, "MCPS3102EB\r"),
      Orders("VPM_SetLBPThresholdFor24VSystem", With(KAVO_ROLU_VPM_SetLBPThresholdFor24VSystem, 23.5F),
             {"OK"}, "MCPS2105CD\r"),
      Orders("VPM_SetPrebootThresholdFor12VSystem",
             With(KAVO_ROLU_VPM_SetPrebootThresholdFor12VSystem, 11.0F), {"OK"}, "MCPS3002CB\r"),
      Orders("VPM_SetPrebootThresholdFor24VSystem",
             With(KAVO_ROLU_VPM_SetPrebootThresholdFor24VSystem, 23.0F), {"OK"}, "MCPS2005AE\r"),
      GivesThreshold("VPM_GetLBPThresholdFor12VSystem", KAVO_ROLU_VPM_GetLBPThresholdFor12VSystem, "02EB",
                     747, k12V, "MCPG31\r"),
      GivesThreshold("VPM_GetLBPThresholdFor24VSystem", KAVO_ROLU_VPM_GetLBPThresholdFor24VSystem, "05AE",
                     1454, k24V, "MCPG21\r"),
      GivesThreshold("VPM_GetPrebootThresholdFor12VSystem", KAVO_ROLU_VPM_GetPrebootThresholdFor12VSystem,
                     "02EC", 748, k12V, "MCPG30\r"),
      GivesThreshold("VPM_GetPrebootThresholdFor24VSystem", KAVO_ROLU_VPM_GetPrebootThresholdFor24VSystem,
                     "05AF", 1455, k24V, "MCPG20\r"),
      Reads(Gives("VPM_GetCarBatteryVoltage 12V", get_voltage, {"03", "0333"}, Written(819 * k12V),
                  "MCBG\rMCVG\r"),
            voltage, kUnknownMode),
      Reads(Gives("VPM_GetCarBatteryVoltage 24V", get_voltage, {"2", "05AE"}, Written(1454 * k24V),
                  "MCBG\rMCVG\r"),
            voltage, kUnknownMode),
      Orders("VPM_SetCurrentCarBatteryMode 12V", SetMode(3), {"OK", "OK"}, "MCCS00\rMCBS03\r", 100),
      Orders("VPM_SetCurrentCarBatteryMode 24V", SetMode(2), {"OK", "OK"}, "MCCS00\rMCBS02\r", 100),
      Reads(Gives("VPM_GetCurrentCarBatteryMode", Into(KAVO_ROLU_VPM_GetCurrentCarBatteryMode), {"03"},
                  Written(CAR_BATTERY_MODE_12V), "MCBG\r"),
            {BatteryMode}, kUnknownMode),
      Reads(Orders("VPM_SetLBPStatus", With(KAVO_ROLU_VPM_SetLBPStatus, 1), {"10", "OK"}, "MCCG\rMCCS11\r"),
            {ChangesFlag(1, '1')}),
      Reads(Orders("VPM_SetPrebootLBPStatus", With(KAVO_ROLU_VPM_SetPrebootLBPStatus, 0), {"11", "OK"},
                   "MCCG\rMCCS01\r"),
            {ChangesFlag(0, '0')}),
      Reads(Gives("VPM_GetLBPStatus", Into(KAVO_ROLU_VPM_GetLBPStatus), {"01"}, Written('\1'), "MCCG\r"),
            {Flag(1)}),
      Asks("VPM_GetPrebootLBPStatus", KAVO_ROLU_VPM_GetPrebootLBPStatus, "01", '\0', "MCCG\r"),
  };
  return operations;
}

const std::vector<CallRow>& BackupBatteryOperations() {
  static const std::vector<CallRow> operations = {
      Reads(Gives("VPM_GetBackupBatteryVoltage", Into(KAVO_ROLU_VPM_GetBackupBatteryVoltage), {"1068"},
                  Written(4.2F), "B04\r"),
            {BackupVoltage}),
      Asks("VPM_GetBackupBatteryRemainingCapacity", KAVO_ROLU_VPM_GetBackupBatteryRemainingCapacity, "07D0",
           2000, "B08\r"),
      Asks("VPM_GetBackupBatteryPercentageOfCharge", KAVO_ROLU_VPM_GetBackupBatteryPercentageOfCharge, "64",
           100, "B22\r"),
      Reads(Gives("VPM_GetBackupBatteryTemperture", Into(KAVO_ROLU_VPM_GetBackupBatteryTemperture), {"0BA6"},
                  Written(25.05F), "B03\r"),
            {BackupTemperature}),
      Asks("VPM_GetBackupBatteryRemainingTime", KAVO_ROLU_VPM_GetBackupBatteryRemainingTime, "FFFF", 65535,
           "B11\r"),
      Asks("VPM_GetBackupBatteryTimeToFull", KAVO_ROLU_VPM_GetBackupBatteryTimeToFull, "3C", 60, "B12\r"),
      Reads(Gives("VPM_GetBackupBatteryInfo", Into(KAVO_ROLU_VPM_GetBackupBatteryInfo),
                  {"1F", "0000000000000000"}, Written(31), "B09\rB05\r"),
            {UsualReading<int>(), BackupFlags}),
  };
  return operations;
}

}  // namespace rolu_test
