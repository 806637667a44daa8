#include "core/exported_call.h"
#include "vpm/vpm_manager.h"

ROLU_STATUS KAVO_ROLU_VPM_Initialize(uint8_t unused) {
  return StatusCode(gVPMMgr.Initialize(unused));
}
ROLU_STATUS KAVO_ROLU_VPM_Deinitialize(void) {
  return StatusCode(gVPMMgr.Deinitialize());
}
ROLU_STATUS KAVO_ROLU_VPM_GetFWVersion(VPM_FIRMWARE_INFO* info) {
  return StatusCode(gVPMMgr.GetFWVersion(info));
}
ROLU_STATUS KAVO_ROLU_VPM_GetLibVersion(unsigned char* version) {
  return StatusCode(gVPMMgr.GetLibVersion(version));
}
ROLU_STATUS KAVO_ROLU_VPM_GetPlatformName(char* name) {
  return StatusCode(gVPMMgr.GetPlatformName(name));
}
ROLU_STATUS KAVO_ROLU_VPM_GetLBPThresholdInfo(CAR_BATTERY_MODE mode, BATTERY_INFO* info) {
  return StatusCode(gVPMMgr.GetLBPThresholdInfo(mode, info));
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
