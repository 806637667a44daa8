// Operations that the family does not provide yet.
#include "vpm/vpm_manager.h"

uint32_t CVPMMgr::GetForceShutdownDelay(unsigned short*) {
  return ROLU_STATUS_NOT_SUPPORTED;
}
uint32_t CVPMMgr::SetForceShutdownDelay(unsigned short) {
  return ROLU_STATUS_NOT_SUPPORTED;
}
uint32_t CVPMMgr::GetForceShutdown(char*) {
  return ROLU_STATUS_NOT_SUPPORTED;
}
uint32_t CVPMMgr::SetForceShutdown(char) {
  return ROLU_STATUS_NOT_SUPPORTED;
}
uint32_t CVPMMgr::SetIgnOffEventDelay(unsigned short) {
  return ROLU_STATUS_NOT_SUPPORTED;
}
uint32_t CVPMMgr::GetIgnOffEventDelay(unsigned short*) {
  return ROLU_STATUS_NOT_SUPPORTED;
}
uint32_t CVPMMgr::SetIgnHardOffDelay(unsigned short) {
  return ROLU_STATUS_NOT_SUPPORTED;
}
uint32_t CVPMMgr::GetIgnHardOffDelay(unsigned short*) {
  return ROLU_STATUS_NOT_SUPPORTED;
}
uint32_t CVPMMgr::SetIgnSuspendHardOffDelay(unsigned short) {
  return ROLU_STATUS_NOT_SUPPORTED;
}
uint32_t CVPMMgr::GetIgnSuspendHardOffDelay(unsigned short*) {
  return ROLU_STATUS_NOT_SUPPORTED;
}
uint32_t CVPMMgr::SetPrePowerOffAlarmDelay(unsigned short) {
  return ROLU_STATUS_NOT_SUPPORTED;
}
uint32_t CVPMMgr::GetPrePowerOffAlarmDelay(unsigned short*) {
  return ROLU_STATUS_NOT_SUPPORTED;
}
uint32_t CVPMMgr::SeIgnOnDelay(unsigned short) {
  return ROLU_STATUS_NOT_SUPPORTED;
}
uint32_t CVPMMgr::GetIgnOnDelay(unsigned short*) {
  return ROLU_STATUS_NOT_SUPPORTED;
}
uint32_t CVPMMgr::SetLBPLowDelay(unsigned short) {
  return ROLU_STATUS_NOT_SUPPORTED;
}
uint32_t CVPMMgr::GetLBPLowDelay(unsigned short*) {
  return ROLU_STATUS_NOT_SUPPORTED;
}
uint32_t CVPMMgr::SetLBPLowHardDelay(unsigned short) {
  return ROLU_STATUS_NOT_SUPPORTED;
}
uint32_t CVPMMgr::GetLBPLowHardDelay(unsigned short*) {
  return ROLU_STATUS_NOT_SUPPORTED;
}
uint32_t CVPMMgr::GetIgnitionStatus(char*) {
  return ROLU_STATUS_NOT_SUPPORTED;
}
uint32_t CVPMMgr::GetPrePowerOffAlarm(char*) {
  return ROLU_STATUS_NOT_SUPPORTED;
}
uint32_t CVPMMgr::SetPrePowerOffAlarm(char) {
  return ROLU_STATUS_NOT_SUPPORTED;
}
uint32_t CVPMMgr::SetIgnPowerOffAlarmEvent(void*) {
  return ROLU_STATUS_NOT_SUPPORTED;
}
uint32_t CVPMMgr::SetLBPPowerOffAlarmEvent(void*) {
  return ROLU_STATUS_NOT_SUPPORTED;
}
uint32_t CVPMMgr::SetATMode(char) {
  return ROLU_STATUS_NOT_SUPPORTED;
}
uint32_t CVPMMgr::GetATMode(char*) {
  return ROLU_STATUS_NOT_SUPPORTED;
}
uint32_t CVPMMgr::SetKeepAliveMode(char) {
  return ROLU_STATUS_NOT_SUPPORTED;
}
uint32_t CVPMMgr::GetKeepAliveMode(char*) {
  return ROLU_STATUS_NOT_SUPPORTED;
}
uint32_t CVPMMgr::SetShutdownSourceControlStatus(SHUTDOWN_SOURCE, char) {
  return ROLU_STATUS_NOT_SUPPORTED;
}
uint32_t CVPMMgr::GetShutdownSourceControlStatus(SHUTDOWN_SOURCE, char*) {
  return ROLU_STATUS_NOT_SUPPORTED;
}
uint32_t CVPMMgr::SetWakeupSourceControlStatus(WAKEUP_SOURCE, char) {
  return ROLU_STATUS_NOT_SUPPORTED;
}
uint32_t CVPMMgr::GetWakeupSourceControlStatus(WAKEUP_SOURCE, char*) {
  return ROLU_STATUS_NOT_SUPPORTED;
}
uint32_t CVPMMgr::GetLastWakeupSource(WAKEUP_SOURCE*) {
  return ROLU_STATUS_NOT_SUPPORTED;
}
uint32_t CVPMMgr::ForceShutdown() {
  return ROLU_STATUS_NOT_SUPPORTED;
}
uint32_t CVPMMgr::LoadDefaultValue() {
  return ROLU_STATUS_NOT_SUPPORTED;
}
uint32_t CVPMMgr::SetIgnitionMode(IGNITION_MODE) {
  return ROLU_STATUS_NOT_SUPPORTED;
}
uint32_t CVPMMgr::GetIgnitionMode(IGNITION_MODE*) {
  return ROLU_STATUS_NOT_SUPPORTED;
}
uint32_t CVPMMgr::SetAlarmActive(char) {
  return ROLU_STATUS_NOT_SUPPORTED;
}
uint32_t CVPMMgr::GetAlarmActive(char*) {
  return ROLU_STATUS_NOT_SUPPORTED;
}
uint32_t CVPMMgr::SetAlarmTime(ALARM_MODE, VPM_ALARM_TIME) {
  return ROLU_STATUS_NOT_SUPPORTED;
}
uint32_t CVPMMgr::GetAlarmTime(ALARM_MODE*, VPM_ALARM_TIME*) {
  return ROLU_STATUS_NOT_SUPPORTED;
}
uint32_t CVPMMgr::GetRTCTime(VPM_RTC_TIME*) {
  return ROLU_STATUS_NOT_SUPPORTED;
}
uint32_t CVPMMgr::SetRTCTime(VPM_RTC_TIME) {
  return ROLU_STATUS_NOT_SUPPORTED;
}
uint32_t CVPMMgr::GetBackupBatteryVoltage(float*) {
  return ROLU_STATUS_NOT_SUPPORTED;
}
uint32_t CVPMMgr::GetBackupBatteryRemainingCapacity(int*) {
  return ROLU_STATUS_NOT_SUPPORTED;
}
uint32_t CVPMMgr::GetBackupBatteryPercentageOfCharge(int*) {
  return ROLU_STATUS_NOT_SUPPORTED;
}
uint32_t CVPMMgr::GetBackupBatteryTemperture(float*) {
  return ROLU_STATUS_NOT_SUPPORTED;
}
uint32_t CVPMMgr::GetBackupBatteryRemainingTime(int*) {
  return ROLU_STATUS_NOT_SUPPORTED;
}
uint32_t CVPMMgr::GetBackupBatteryTimeToFull(int*) {
  return ROLU_STATUS_NOT_SUPPORTED;
}
uint32_t CVPMMgr::GetBackupBatteryInfo(BACKUP_BATTERY_INFO*) {
  return ROLU_STATUS_NOT_SUPPORTED;
}
