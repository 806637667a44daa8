#include "core/exported_call.h"
#include "mcu/queries.h"
#include "vpm/vpm_manager.h"

namespace {

constexpr double kVoltsPerUnit = 0.001;
constexpr double kKelvinsPerUnit = 0.1;
constexpr double kZeroCelsiusInKelvin = 273.15;

// The flags of the status word that the information record has a place for.
struct StatusFlag {
  unsigned int bit;
  uint8_t BACKUP_BATTERY_INFO::*flag;
};

constexpr StatusFlag kStatusFlags[] = {
    {0, &BACKUP_BATTERY_INFO::status_bit0},   {1, &BACKUP_BATTERY_INFO::status_bit1},
    {2, &BACKUP_BATTERY_INFO::status_bit2},   {7, &BACKUP_BATTERY_INFO::status_bit7},
    {8, &BACKUP_BATTERY_INFO::status_bit8},   {9, &BACKUP_BATTERY_INFO::status_bit9},
    {10, &BACKUP_BATTERY_INFO::status_bit10}, {11, &BACKUP_BATTERY_INFO::status_bit11},
    {14, &BACKUP_BATTERY_INFO::status_bit14}, {15, &BACKUP_BATTERY_INFO::status_bit15},
};

int AsItIs(int32_t number) {
  return number;
}

float AsVolts(int32_t millivolts) {
  return static_cast<float>(static_cast<double>(static_cast<float>(millivolts)) * kVoltsPerUnit);
}

float AsCelsius(int32_t tenths_of_kelvin) {
  const auto tenths = static_cast<double>(static_cast<float>(tenths_of_kelvin));
  return static_cast<float>(tenths * kKelvinsPerUnit - kZeroCelsiusInKelvin);
}

}  // namespace

template <typename Value>
uint32_t CVPMMgr::GetBackupBatteryValue(const char* command, Value (*convert)(int32_t), Value* value) {
  if (initialized != 1) return ROLU_STATUS_NOT_INITIALIZED;
  if (value == nullptr) return ROLU_STATUS_INVALID_PARAMETER;
  int32_t number = 0;
  const uint32_t status = QueryNumber(error_table, Command("%s", command), number);
  if (status == ROLU_STATUS_SUCCESS) *value = convert(number);
  return status;
}

uint32_t CVPMMgr::GetBackupBatteryVoltage(float* volts) {
  return GetBackupBatteryValue("B04\r", AsVolts, volts);
}
uint32_t CVPMMgr::GetBackupBatteryRemainingCapacity(int* capacity) {
  return GetBackupBatteryValue("B08\r", AsItIs, capacity);
}
uint32_t CVPMMgr::GetBackupBatteryPercentageOfCharge(int* percent) {
  return GetBackupBatteryValue("B22\r", AsItIs, percent);
}
uint32_t CVPMMgr::GetBackupBatteryTemperture(float* celsius) {
  return GetBackupBatteryValue("B03\r", AsCelsius, celsius);
}
uint32_t CVPMMgr::GetBackupBatteryRemainingTime(int* time) {
  return GetBackupBatteryValue("B11\r", AsItIs, time);
}
uint32_t CVPMMgr::GetBackupBatteryTimeToFull(int* time) {
  return GetBackupBatteryValue("B12\r", AsItIs, time);
}

uint32_t CVPMMgr::GetBackupBatteryInfo(BACKUP_BATTERY_INFO* info) {
  if (initialized != 1) return ROLU_STATUS_NOT_INITIALIZED;
  if (info == nullptr) return ROLU_STATUS_INVALID_PARAMETER;
  uint32_t status = QueryNumber(error_table, Command("B09\r"), info->info_value);
  if (status != ROLU_STATUS_SUCCESS) return status;
  Reply reply;
  status = Query(error_table, Command("B05\r"), reply);
  if (status != ROLU_STATUS_SUCCESS) return status;
  const auto word = static_cast<uint16_t>(ReadBinary(reply.text));
  for (const StatusFlag& entry : kStatusFlags) {
    if ((word >> entry.bit & 1U) != 0) info->*entry.flag = 1;
  }
  return ROLU_STATUS_SUCCESS;
}

ROLU_STATUS KAVO_ROLU_VPM_GetBackupBatteryVoltage(float* volts) {
  return StatusCode(gVPMMgr.GetBackupBatteryVoltage(volts));
}
ROLU_STATUS KAVO_ROLU_VPM_GetBackupBatteryRemainingCapacity(int* capacity) {
  return StatusCode(gVPMMgr.GetBackupBatteryRemainingCapacity(capacity));
}
ROLU_STATUS KAVO_ROLU_VPM_GetBackupBatteryPercentageOfCharge(int* percent) {
  return StatusCode(gVPMMgr.GetBackupBatteryPercentageOfCharge(percent));
}
ROLU_STATUS KAVO_ROLU_VPM_GetBackupBatteryTemperture(float* celsius) {
  return StatusCode(gVPMMgr.GetBackupBatteryTemperture(celsius));
}
ROLU_STATUS KAVO_ROLU_VPM_GetBackupBatteryRemainingTime(int* time) {
  return StatusCode(gVPMMgr.GetBackupBatteryRemainingTime(time));
}
ROLU_STATUS KAVO_ROLU_VPM_GetBackupBatteryTimeToFull(int* time) {
  return StatusCode(gVPMMgr.GetBackupBatteryTimeToFull(time));
}
ROLU_STATUS KAVO_ROLU_VPM_GetBackupBatteryInfo(BACKUP_BATTERY_INFO* info) {
  return StatusCode(gVPMMgr.GetBackupBatteryInfo(info));
}
