#include "core/exported_call.h"
#include "mcu/queries.h"
#include "vpm/voltage_scale.h"
#include "vpm/vpm_manager.h"

uint32_t CVPMMgr::SetBatteryLowVoltageThre(BOOT_TYPE type, CAR_BATTERY_MODE mode, float volts) {
  if (initialized != 1) return ROLU_STATUS_NOT_INITIALIZED;
  if (!IsBatteryMode(mode)) return ROLU_STATUS_INVALID_PARAMETER;
  const unsigned int raw = VoltsToRaw(volts, VoltageScale(mode));
  return Order(error_table, Command("MCPS%1d%d%04X\r", mode, type, raw));
}

uint32_t CVPMMgr::GetBatteryLowVoltageThre(BOOT_TYPE type, CAR_BATTERY_MODE mode, float* volts) {
  if (initialized != 1) return ROLU_STATUS_NOT_INITIALIZED;
  if (!IsBatteryMode(mode) || volts == nullptr) return ROLU_STATUS_INVALID_PARAMETER;
  int32_t raw = 0;
  const uint32_t status = QueryNumber(error_table, Command("MCPG%1d%1d\r", mode, type), raw);
  if (status != ROLU_STATUS_SUCCESS) return status;
  *volts = static_cast<float>(static_cast<uint32_t>(raw)) * VoltageScale(mode);
  return ROLU_STATUS_SUCCESS;
}

uint32_t CVPMMgr::SetLBPThresholdFor12VSystem(float volts) {
  return SetBatteryLowVoltageThre(BOOT_TYPE_LBP, CAR_BATTERY_MODE_12V, volts);
}
uint32_t CVPMMgr::GetLBPThresholdFor12VSystem(float* volts) {
  return GetBatteryLowVoltageThre(BOOT_TYPE_LBP, CAR_BATTERY_MODE_12V, volts);
}
uint32_t CVPMMgr::SetLBPThresholdFor24VSystem(float volts) {
  return SetBatteryLowVoltageThre(BOOT_TYPE_LBP, CAR_BATTERY_MODE_24V, volts);
}
uint32_t CVPMMgr::GetLBPThresholdFor24VSystem(float* volts) {
  return GetBatteryLowVoltageThre(BOOT_TYPE_LBP, CAR_BATTERY_MODE_24V, volts);
}
uint32_t CVPMMgr::SetPrebootThresholdFor12VSystem(float volts) {
  return SetBatteryLowVoltageThre(BOOT_TYPE_PREBOOT, CAR_BATTERY_MODE_12V, volts);
}
uint32_t CVPMMgr::GetPrebootThresholdFor12VSystem(float* volts) {
  return GetBatteryLowVoltageThre(BOOT_TYPE_PREBOOT, CAR_BATTERY_MODE_12V, volts);
}
uint32_t CVPMMgr::SetPrebootThresholdFor24VSystem(float volts) {
  return SetBatteryLowVoltageThre(BOOT_TYPE_PREBOOT, CAR_BATTERY_MODE_24V, volts);
}
uint32_t CVPMMgr::GetPrebootThresholdFor24VSystem(float* volts) {
  return GetBatteryLowVoltageThre(BOOT_TYPE_PREBOOT, CAR_BATTERY_MODE_24V, volts);
}

uint32_t CVPMMgr::GetCarBatteryVoltage(float* volts) {
  if (initialized != 1) return ROLU_STATUS_NOT_INITIALIZED;
  if (volts == nullptr) return ROLU_STATUS_INVALID_PARAMETER;
  CAR_BATTERY_MODE mode = CAR_BATTERY_MODE_12V;
  uint32_t status = GetCurrentCarBatteryMode(&mode);
  if (status != ROLU_STATUS_SUCCESS) return status;
  int32_t raw = 0;
  status = QueryNumber(error_table, Command("MCVG\r"), raw);
  if (status != ROLU_STATUS_SUCCESS) return status;
  *volts = static_cast<float>(raw) * VoltageScale(mode);
  return ROLU_STATUS_SUCCESS;
}

uint32_t CVPMMgr::SetCurrentCarBatteryMode(CAR_BATTERY_MODE mode) {
  if (initialized != 1) return ROLU_STATUS_NOT_INITIALIZED;
  if (!IsBatteryMode(mode)) return ROLU_STATUS_INVALID_PARAMETER;
  // Thresholds of one battery system mean nothing to the other: both protections go off first.
  const uint32_t status = Order(error_table, Command("MCCS00\r"));
  if (status != ROLU_STATUS_SUCCESS) return status;
  return Order(error_table, Command("MCBS%02X\r", static_cast<unsigned int>(mode)));
}

uint32_t CVPMMgr::GetCurrentCarBatteryMode(CAR_BATTERY_MODE* mode) {
  if (initialized != 1) return ROLU_STATUS_NOT_INITIALIZED;
  if (mode == nullptr) return ROLU_STATUS_INVALID_PARAMETER;
  int32_t reported = 0;
  const uint32_t status = QueryNumber(error_table, Command("MCBG\r"), reported);
  if (status != ROLU_STATUS_SUCCESS) return status;
  if (!IsBatteryMode(reported)) return ROLU_STATUS_VPM_ERROR_REPLY;
  *mode = static_cast<CAR_BATTERY_MODE>(reported);
  return ROLU_STATUS_SUCCESS;
}

uint32_t CVPMMgr::SetLowVoltageProtection(BOOT_TYPE type, char enable) {
  if (initialized != 1) return ROLU_STATUS_NOT_INITIALIZED;
  Reply flags;
  const uint32_t status = Query(error_table, Command("MCCG\r"), flags);
  if (status != ROLU_STATUS_SUCCESS) return status;
  flags.text[type] = enable != 0 ? '1' : '0';
  return Order(error_table, Command("MCCS%s\r", flags.text));
}

uint32_t CVPMMgr::GetLowVoltageProtection(BOOT_TYPE type, char* enabled) {
  if (initialized != 1) return ROLU_STATUS_NOT_INITIALIZED;
  if (enabled == nullptr) return ROLU_STATUS_INVALID_PARAMETER;
  return QueryFlag(error_table, Command("MCCG\r"), type, enabled);
}

uint32_t CVPMMgr::SetLowBatteryProtectionStatus(char enable) {
  return SetLowVoltageProtection(BOOT_TYPE_LBP, enable);
}
uint32_t CVPMMgr::SetLowBatteryProtectionStatus(char* enabled) {
  return GetLowVoltageProtection(BOOT_TYPE_LBP, enabled);
}
uint32_t CVPMMgr::SetPreBootLowBatteryProtectionStatus(char enable) {
  return SetLowVoltageProtection(BOOT_TYPE_PREBOOT, enable);
}
uint32_t CVPMMgr::SetPreBootLowBatteryProtectionStatus(char* enabled) {
  return GetLowVoltageProtection(BOOT_TYPE_PREBOOT, enabled);
}

ROLU_STATUS KAVO_ROLU_VPM_GetCarBatteryVoltage(float* volts) {
  return StatusCode(gVPMMgr.GetCarBatteryVoltage(volts));
}
ROLU_STATUS KAVO_ROLU_VPM_SetCurrentCarBatteryMode(CAR_BATTERY_MODE mode) {
  return StatusCode(gVPMMgr.SetCurrentCarBatteryMode(mode));
}
ROLU_STATUS KAVO_ROLU_VPM_GetCurrentCarBatteryMode(CAR_BATTERY_MODE* mode) {
  return StatusCode(gVPMMgr.GetCurrentCarBatteryMode(mode));
}
ROLU_STATUS KAVO_ROLU_VPM_SetLBPThresholdFor12VSystem(float volts) {
  return StatusCode(gVPMMgr.SetLBPThresholdFor12VSystem(volts));
}
ROLU_STATUS KAVO_ROLU_VPM_GetLBPThresholdFor12VSystem(float* volts) {
  return StatusCode(gVPMMgr.GetLBPThresholdFor12VSystem(volts));
}
ROLU_STATUS KAVO_ROLU_VPM_SetLBPThresholdFor24VSystem(float volts) {
  return StatusCode(gVPMMgr.SetLBPThresholdFor24VSystem(volts));
}
ROLU_STATUS KAVO_ROLU_VPM_GetLBPThresholdFor24VSystem(float* volts) {
  return StatusCode(gVPMMgr.GetLBPThresholdFor24VSystem(volts));
}
ROLU_STATUS KAVO_ROLU_VPM_SetPrebootThresholdFor12VSystem(float volts) {
  return StatusCode(gVPMMgr.SetPrebootThresholdFor12VSystem(volts));
}
ROLU_STATUS KAVO_ROLU_VPM_GetPrebootThresholdFor12VSystem(float* volts) {
  return StatusCode(gVPMMgr.GetPrebootThresholdFor12VSystem(volts));
}
ROLU_STATUS KAVO_ROLU_VPM_SetPrebootThresholdFor24VSystem(float volts) {
  return StatusCode(gVPMMgr.SetPrebootThresholdFor24VSystem(volts));
}
ROLU_STATUS KAVO_ROLU_VPM_GetPrebootThresholdFor24VSystem(float* volts) {
  return StatusCode(gVPMMgr.GetPrebootThresholdFor24VSystem(volts));
}
ROLU_STATUS KAVO_ROLU_VPM_SetLBPStatus(char enable) {
  return StatusCode(gVPMMgr.SetLowBatteryProtectionStatus(enable));
}
ROLU_STATUS KAVO_ROLU_VPM_GetLBPStatus(char* enabled) {
  return StatusCode(gVPMMgr.SetLowBatteryProtectionStatus(enabled));
}
ROLU_STATUS KAVO_ROLU_VPM_SetPrebootLBPStatus(char enable) {
  return StatusCode(gVPMMgr.SetPreBootLowBatteryProtectionStatus(enable));
}
ROLU_STATUS KAVO_ROLU_VPM_GetPrebootLBPStatus(char* enabled) {
  return StatusCode(gVPMMgr.SetPreBootLowBatteryProtectionStatus(enabled));
}
