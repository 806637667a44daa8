#include <cstdio>

#include "core/exported_call.h"
#include "mcu/queries.h"
#include "mcu/unsolicited.h"
#include "vpm/vpm_manager.h"

namespace {

// Restoring its defaults keeps the MCU busy for this long.
constexpr int kLoadDefaultsMs = 1250;

// The two modes that the MCU reports and stores together. A digit that cannot be read is 0.
struct OperatingModes {
  int keep_alive = 0;
  int at = 0;
};

uint32_t QueryModes(const ErrorReplyEntry* table, OperatingModes& modes) {
  Reply reply;
  const uint32_t status = Query(table, Command("MCAG\r"), reply);
  if (status == ROLU_STATUS_SUCCESS) sscanf(reply.text, "%1d%1d", &modes.keep_alive, &modes.at);
  return status;
}

}  // namespace

uint32_t CVPMMgr::GetIgnitionStatus(char* on) {
  if (initialized != 1) return ROLU_STATUS_NOT_INITIALIZED;
  if (on == nullptr) return ROLU_STATUS_INVALID_PARAMETER;
  Reply reply;
  const uint32_t status = Query(error_table, Command("IGNG\r"), reply);
  if (status != ROLU_STATUS_SUCCESS) return status;
  if (reply.text[0] != 'O' || (reply.text[1] != 'N' && reply.text[1] != 'F'))
    return ROLU_STATUS_VPM_ERROR_REPLY;
  *on = reply.text[1] == 'N' ? 1 : 0;
  return ROLU_STATUS_SUCCESS;
}

uint32_t CVPMMgr::SetIgnitionMode(IGNITION_MODE mode) {
  if (initialized != 1) return ROLU_STATUS_NOT_INITIALIZED;
  if (mode != IGNITION_MODE_1 && mode != IGNITION_MODE_2) return ROLU_STATUS_INVALID_PARAMETER;
  return Order(error_table, Command("IGMS%d\r", mode));
}

uint32_t CVPMMgr::GetIgnitionMode(IGNITION_MODE* mode) {
  if (initialized != 1) return ROLU_STATUS_NOT_INITIALIZED;
  if (mode == nullptr) return ROLU_STATUS_INVALID_PARAMETER;
  Reply reply;
  const uint32_t status = Query(error_table, Command("IGMG\r"), reply);
  if (status != ROLU_STATUS_SUCCESS) return status;
  if (reply.text[0] != '1' && reply.text[0] != '2') return ROLU_STATUS_VPM_ERROR_REPLY;
  *mode = reply.text[0] == '1' ? IGNITION_MODE_1 : IGNITION_MODE_2;
  return ROLU_STATUS_SUCCESS;
}

uint32_t CVPMMgr::SetPrePowerOffAlarm(char enable) {
  if (initialized != 1) return ROLU_STATUS_NOT_INITIALIZED;
  return Order(error_table, Command("MPAS%01d\r", enable != 0 ? 1 : 0));
}

uint32_t CVPMMgr::GetPrePowerOffAlarm(char* enabled) {
  if (initialized != 1) return ROLU_STATUS_NOT_INITIALIZED;
  if (enabled == nullptr) return ROLU_STATUS_INVALID_PARAMETER;
  return QueryFlag(error_table, Command("MPAG\r"), 0, enabled);
}

uint32_t CVPMMgr::GetKeepAliveMode(char* mode) {
  if (initialized != 1) return ROLU_STATUS_NOT_INITIALIZED;
  if (mode == nullptr) return ROLU_STATUS_INVALID_PARAMETER;
  OperatingModes modes;
  const uint32_t status = QueryModes(error_table, modes);
  if (status == ROLU_STATUS_SUCCESS) *mode = static_cast<char>(modes.keep_alive);
  return status;
}

uint32_t CVPMMgr::GetATMode(char* mode) {
  if (initialized != 1) return ROLU_STATUS_NOT_INITIALIZED;
  if (mode == nullptr) return ROLU_STATUS_INVALID_PARAMETER;
  OperatingModes modes;
  const uint32_t status = QueryModes(error_table, modes);
  if (status == ROLU_STATUS_SUCCESS) *mode = static_cast<char>(modes.at);
  return status;
}

uint32_t CVPMMgr::SetKeepAliveMode(char mode) {
  if (initialized != 1) return ROLU_STATUS_NOT_INITIALIZED;
  OperatingModes modes;
  const uint32_t status = QueryModes(error_table, modes);
  if (status != ROLU_STATUS_SUCCESS) return status;
  return Order(error_table, Command("MCAS%1d%1d\r", static_cast<unsigned char>(mode), modes.at));
}

uint32_t CVPMMgr::SetATMode(char mode) {
  if (initialized != 1) return ROLU_STATUS_NOT_INITIALIZED;
  OperatingModes modes;
  const uint32_t status = QueryModes(error_table, modes);
  if (status != ROLU_STATUS_SUCCESS) return status;
  return Order(error_table, Command("MCAS%1d%1d\r", modes.keep_alive, static_cast<unsigned char>(mode)));
}

uint32_t CVPMMgr::LoadDefaultValue() {
  if (initialized != 1) return ROLU_STATUS_NOT_INITIALIZED;
  return Order(error_table, Command("EEDF\r"), kLoadDefaultsMs);
}

uint32_t CVPMMgr::SetIgnPowerOffAlarmEvent(void* event) {
  if (event == nullptr) return ROLU_STATUS_NULL_POINTER;
  if (initialized != 1) return ROLU_STATUS_NOT_INITIALIZED;
  set_ignition_poweroff_alarm_event(event);
  return ROLU_STATUS_SUCCESS;
}

uint32_t CVPMMgr::SetLBPPowerOffAlarmEvent(void* event) {
  if (event == nullptr) return ROLU_STATUS_NULL_POINTER;
  if (initialized != 1) return ROLU_STATUS_NOT_INITIALIZED;
  set_lvp_poweroff_alarm_event(event);
  return ROLU_STATUS_SUCCESS;
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
