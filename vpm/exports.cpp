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
ROLU_STATUS KAVO_ROLU_VPM_SetIgnOffEventDelay(unsigned short delay) {
  return StatusCode(gVPMMgr.SetIgnOffEventDelay(delay));
}
ROLU_STATUS KAVO_ROLU_VPM_GetIgnOffEventDelay(unsigned short* delay) {
  return StatusCode(gVPMMgr.GetIgnOffEventDelay(delay));
}
ROLU_STATUS KAVO_ROLU_VPM_SetIgnHardOffDelay(unsigned short delay) {
  return StatusCode(gVPMMgr.SetIgnHardOffDelay(delay));
}
ROLU_STATUS KAVO_ROLU_VPM_GetIgnHardOffDelay(unsigned short* delay) {
  return StatusCode(gVPMMgr.GetIgnHardOffDelay(delay));
}
ROLU_STATUS KAVO_ROLU_VPM_SetIgnSuspendHardOffDelay(unsigned short delay) {
  return StatusCode(gVPMMgr.SetIgnSuspendHardOffDelay(delay));
}
ROLU_STATUS KAVO_ROLU_VPM_GetIgnSuspendHardOffDelay(unsigned short* delay) {
  return StatusCode(gVPMMgr.GetIgnSuspendHardOffDelay(delay));
}
ROLU_STATUS KAVO_ROLU_VPM_SetIgnOnDelay(unsigned short delay) {
  return StatusCode(gVPMMgr.SeIgnOnDelay(delay));
}
ROLU_STATUS KAVO_ROLU_VPM_GetIgnOnDelay(unsigned short* delay) {
  return StatusCode(gVPMMgr.GetIgnOnDelay(delay));
}
ROLU_STATUS KAVO_ROLU_VPM_SetLBPLowDelay(unsigned short delay) {
  return StatusCode(gVPMMgr.SetLBPLowDelay(delay));
}
ROLU_STATUS KAVO_ROLU_VPM_GetLBPLowDelay(unsigned short* delay) {
  return StatusCode(gVPMMgr.GetLBPLowDelay(delay));
}
ROLU_STATUS KAVO_ROLU_VPM_SetLBPLowHardDelay(unsigned short delay) {
  return StatusCode(gVPMMgr.SetLBPLowHardDelay(delay));
}
ROLU_STATUS KAVO_ROLU_VPM_GetLBPLowHardDelay(unsigned short* delay) {
  return StatusCode(gVPMMgr.GetLBPLowHardDelay(delay));
}
ROLU_STATUS KAVO_ROLU_VPM_SetPrePowerOffAlarmDelay(unsigned short delay) {
  return StatusCode(gVPMMgr.SetPrePowerOffAlarmDelay(delay));
}
ROLU_STATUS KAVO_ROLU_VPM_GetPrePowerOffAlarmDelay(unsigned short* delay) {
  return StatusCode(gVPMMgr.GetPrePowerOffAlarmDelay(delay));
}
ROLU_STATUS KAVO_ROLU_VPM_SetForceShutDownDelay(unsigned short delay) {
  return StatusCode(gVPMMgr.SetForceShutdownDelay(delay));
}
ROLU_STATUS KAVO_ROLU_VPM_GetForceShutDownDelay(unsigned short* delay) {
  return StatusCode(gVPMMgr.GetForceShutdownDelay(delay));
}
ROLU_STATUS KAVO_ROLU_VPM_SetForceShutDown(char enable) {
  return StatusCode(gVPMMgr.SetForceShutdown(enable));
}
ROLU_STATUS KAVO_ROLU_VPM_GetForceShutDown(char* enabled) {
  return StatusCode(gVPMMgr.GetForceShutdown(enabled));
}
ROLU_STATUS KAVO_ROLU_VPM_ForceShutdown(void) {
  return StatusCode(gVPMMgr.ForceShutdown());
}
ROLU_STATUS KAVO_ROLU_VPM_GetIgnitionStatus(char* on) {
  return StatusCode(gVPMMgr.GetIgnitionStatus(on));
}
ROLU_STATUS KAVO_ROLU_VPM_SetIgnitionMode(IGNITION_MODE mode) {
  return StatusCode(gVPMMgr.SetIgnitionMode(mode));
}
ROLU_STATUS KAVO_ROLU_VPM_GetIgnitionMode(IGNITION_MODE* mode) {
  return StatusCode(gVPMMgr.GetIgnitionMode(mode));
}
ROLU_STATUS KAVO_ROLU_VPM_SetPrePowerOffAlarm(char enable) {
  return StatusCode(gVPMMgr.SetPrePowerOffAlarm(enable));
}
ROLU_STATUS KAVO_ROLU_VPM_GetPrePowerOffAlarm(char* enabled) {
  return StatusCode(gVPMMgr.GetPrePowerOffAlarm(enabled));
}
ROLU_STATUS KAVO_ROLU_VPM_SetATMode(char mode) {
  return StatusCode(gVPMMgr.SetATMode(mode));
}
ROLU_STATUS KAVO_ROLU_VPM_GetATMode(char* mode) {
  return StatusCode(gVPMMgr.GetATMode(mode));
}
ROLU_STATUS KAVO_ROLU_VPM_SetKeepAliveMode(char mode) {
  return StatusCode(gVPMMgr.SetKeepAliveMode(mode));
}
ROLU_STATUS KAVO_ROLU_VPM_GetKeepAliveMode(char* mode) {
  return StatusCode(gVPMMgr.GetKeepAliveMode(mode));
}
ROLU_STATUS KAVO_ROLU_VPM_LoadDefaultValue(void) {
  return StatusCode(gVPMMgr.LoadDefaultValue());
}
ROLU_STATUS KAVO_ROLU_VPM_SetIgnPowerOffEvent(void* event) {
  return StatusCode(gVPMMgr.SetIgnPowerOffAlarmEvent(event));
}
ROLU_STATUS KAVO_ROLU_VPM_SetLBPPowerOffEvent(void* event) {
  return StatusCode(gVPMMgr.SetLBPPowerOffAlarmEvent(event));
}
ROLU_STATUS KAVO_ROLU_VPM_SetShutdownSourceControlStatus(SHUTDOWN_SOURCE source, char enable) {
  return StatusCode(gVPMMgr.SetShutdownSourceControlStatus(source, enable));
}
ROLU_STATUS KAVO_ROLU_VPM_GetShutdownSourceControlStatus(SHUTDOWN_SOURCE source, char* enabled) {
  return StatusCode(gVPMMgr.GetShutdownSourceControlStatus(source, enabled));
}
ROLU_STATUS KAVO_ROLU_VPM_SetWakeupSourceControlStatus(WAKEUP_SOURCE source, char enable) {
  return StatusCode(gVPMMgr.SetWakeupSourceControlStatus(source, enable));
}
ROLU_STATUS KAVO_ROLU_VPM_GetWakeupSourceControlStatus(WAKEUP_SOURCE source, char* enabled) {
  return StatusCode(gVPMMgr.GetWakeupSourceControlStatus(source, enabled));
}
ROLU_STATUS KAVO_ROLU_VPM_GetLastWakeupSource(WAKEUP_SOURCE* source) {
  return StatusCode(gVPMMgr.GetLastWakeupSource(source));
}
ROLU_STATUS KAVO_ROLU_VPM_SetRTCTime(VPM_RTC_TIME time) {
  return StatusCode(gVPMMgr.SetRTCTime(time));
}
ROLU_STATUS KAVO_ROLU_VPM_GetRTCTime(VPM_RTC_TIME* time) {
  return StatusCode(gVPMMgr.GetRTCTime(time));
}
ROLU_STATUS KAVO_ROLU_VPM_SetAlarmActive(char enable) {
  return StatusCode(gVPMMgr.SetAlarmActive(enable));
}
ROLU_STATUS KAVO_ROLU_VPM_GetAlarmActive(char* enabled) {
  return StatusCode(gVPMMgr.GetAlarmActive(enabled));
}
ROLU_STATUS KAVO_ROLU_VPM_SetAlarmTime(ALARM_MODE mode, VPM_ALARM_TIME time) {
  return StatusCode(gVPMMgr.SetAlarmTime(mode, time));
}
ROLU_STATUS KAVO_ROLU_VPM_GetAlarmTime(ALARM_MODE* mode, VPM_ALARM_TIME* time) {
  return StatusCode(gVPMMgr.GetAlarmTime(mode, time));
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
