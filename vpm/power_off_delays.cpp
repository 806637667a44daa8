#include "core/exported_call.h"
#include "mcu/queries.h"
#include "vpm/vpm_manager.h"

uint32_t CVPMMgr::SetDelay(DELAY_TYPE type, unsigned short delay) {
  if (initialized != 1) return ROLU_STATUS_NOT_INITIALIZED;
  if (delay == 0) return ROLU_STATUS_INVALID_PARAMETER;
  return Order(error_table, Command("MCUS%1d%04X\r", type, static_cast<unsigned int>(delay)));
}

uint32_t CVPMMgr::GetDelay(DELAY_TYPE type, unsigned short* delay) {
  return GetUnsigned16(Command("MCUG%1d\r", type), delay);
}

uint32_t CVPMMgr::GetUnsigned16(const Command& command, unsigned short* value) {
  if (initialized != 1) return ROLU_STATUS_NOT_INITIALIZED;
  if (value == nullptr) return ROLU_STATUS_INVALID_PARAMETER;
  int32_t number = 0;
  const uint32_t status = QueryNumber(error_table, command, number);
  if (status == ROLU_STATUS_SUCCESS) *value = static_cast<unsigned short>(number);
  return status;
}

uint32_t CVPMMgr::SetIgnOffEventDelay(unsigned short delay) {
  return SetDelay(DELAY_TYPE_IGN_OFF_EVENT, delay);
}
uint32_t CVPMMgr::GetIgnOffEventDelay(unsigned short* delay) {
  return GetDelay(DELAY_TYPE_IGN_OFF_EVENT, delay);
}
uint32_t CVPMMgr::SetIgnHardOffDelay(unsigned short delay) {
  return SetDelay(DELAY_TYPE_IGN_HARD_OFF, delay);
}
uint32_t CVPMMgr::GetIgnHardOffDelay(unsigned short* delay) {
  return GetDelay(DELAY_TYPE_IGN_HARD_OFF, delay);
}
uint32_t CVPMMgr::SetIgnSuspendHardOffDelay(unsigned short delay) {
  return SetDelay(DELAY_TYPE_IGN_SUSPEND_HARD_OFF, delay);
}
uint32_t CVPMMgr::GetIgnSuspendHardOffDelay(unsigned short* delay) {
  return GetDelay(DELAY_TYPE_IGN_SUSPEND_HARD_OFF, delay);
}
uint32_t CVPMMgr::SetPrePowerOffAlarmDelay(unsigned short delay) {
  return SetDelay(DELAY_TYPE_PRE_POWER_OFF_ALARM, delay);
}
uint32_t CVPMMgr::GetPrePowerOffAlarmDelay(unsigned short* delay) {
  return GetDelay(DELAY_TYPE_PRE_POWER_OFF_ALARM, delay);
}
uint32_t CVPMMgr::SeIgnOnDelay(unsigned short delay) {
  return SetDelay(DELAY_TYPE_IGN_ON, delay);
}
uint32_t CVPMMgr::GetIgnOnDelay(unsigned short* delay) {
  return GetDelay(DELAY_TYPE_IGN_ON, delay);
}
uint32_t CVPMMgr::SetLBPLowDelay(unsigned short delay) {
  return SetDelay(DELAY_TYPE_LBP_LOW, delay);
}
uint32_t CVPMMgr::GetLBPLowDelay(unsigned short* delay) {
  return GetDelay(DELAY_TYPE_LBP_LOW, delay);
}
uint32_t CVPMMgr::SetLBPLowHardDelay(unsigned short delay) {
  return SetDelay(DELAY_TYPE_LBP_LOW_HARD, delay);
}
uint32_t CVPMMgr::GetLBPLowHardDelay(unsigned short* delay) {
  return GetDelay(DELAY_TYPE_LBP_LOW_HARD, delay);
}

uint32_t CVPMMgr::SetForceShutdownDelay(unsigned short delay) {
  if (initialized != 1) return ROLU_STATUS_NOT_INITIALIZED;
  if (delay == 0) return ROLU_STATUS_INVALID_PARAMETER;
  return Order(error_table, Command("MSDS%04X\r", static_cast<unsigned int>(delay)));
}

uint32_t CVPMMgr::GetForceShutdownDelay(unsigned short* delay) {
  return GetUnsigned16(Command("MSDG\r"), delay);
}

uint32_t CVPMMgr::SetForceShutdown(char enable) {
  if (initialized != 1) return ROLU_STATUS_NOT_INITIALIZED;
  return Order(error_table, Command("MSSS%01d\r", enable != 0 ? 1 : 0));
}

uint32_t CVPMMgr::GetForceShutdown(char* enabled) {
  if (initialized != 1) return ROLU_STATUS_NOT_INITIALIZED;
  if (enabled == nullptr) return ROLU_STATUS_INVALID_PARAMETER;
  return QueryFlag(error_table, Command("MSSG\r"), 0, enabled);
}

uint32_t CVPMMgr::ForceShutdown() {
  if (initialized != 1) return ROLU_STATUS_NOT_INITIALIZED;
  return Order(error_table, Command("ATPO\r"), 0);
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
