#include "core/exported_call.h"
#include "mcu/queries.h"
#include "vpm/vpm_manager.h"

namespace {

bool IsShutdownSource(SHUTDOWN_SOURCE source) {
  return source == SHUTDOWN_SOURCE_0 || source == SHUTDOWN_SOURCE_1;
}

// The codes with which the MCU reports what woke it.
struct WakeupCode {
  uint16_t code;
  WAKEUP_SOURCE source;
};

constexpr WakeupCode kWakeupCodes[] = {
    {0x00, WAKEUP_SOURCE_NONE},      {0x10, WAKEUP_SOURCE_0},  {0x01, WAKEUP_SOURCE_1},
    {0x02, WAKEUP_SOURCE_1},         {0x03, WAKEUP_SOURCE_1},  {0x60, WAKEUP_SOURCE_2},
    {0x50, WAKEUP_SOURCE_3},         {0x20, WAKEUP_SOURCE_4},  {0x21, WAKEUP_SOURCE_5},
    {0x30, WAKEUP_SOURCE_RTC_ALARM}, {0x40, WAKEUP_SOURCE_10},
};

}  // namespace

uint32_t CVPMMgr::SetShutdownSourceControlStatus(SHUTDOWN_SOURCE source, char enable) {
  if (initialized != 1) return ROLU_STATUS_NOT_INITIALIZED;
  if (!IsShutdownSource(source)) return ROLU_STATUS_INVALID_PARAMETER;
  return Order(error_table, Command("SDMS%01d%01d\r", source, enable != 0 ? 1 : 0));
}

uint32_t CVPMMgr::GetShutdownSourceControlStatus(SHUTDOWN_SOURCE source, char* enabled) {
  if (initialized != 1) return ROLU_STATUS_NOT_INITIALIZED;
  if (enabled == nullptr || !IsShutdownSource(source)) return ROLU_STATUS_INVALID_PARAMETER;
  return QuerySwitch(error_table, Command("SDMG\r"), source, enabled);
}

uint32_t CVPMMgr::SetWakeupSourceControlStatus(WAKEUP_SOURCE source, char enable) {
  if (initialized != 1) return ROLU_STATUS_NOT_INITIALIZED;
  if (source == WAKEUP_SOURCE_NONE) return ROLU_STATUS_INVALID_PARAMETER;
  return Order(error_table, Command("WKMS%d%d\r", source, static_cast<unsigned char>(enable)));
}

uint32_t CVPMMgr::GetWakeupSourceControlStatus(WAKEUP_SOURCE source, char* enabled) {
  if (initialized != 1) return ROLU_STATUS_NOT_INITIALIZED;
  if (enabled == nullptr || source == WAKEUP_SOURCE_NONE) return ROLU_STATUS_INVALID_PARAMETER;
  return QuerySwitch(error_table, Command("WKMG\r"), source, enabled);
}

uint32_t CVPMMgr::GetLastWakeupSource(WAKEUP_SOURCE* source) {
  if (initialized != 1) return ROLU_STATUS_NOT_INITIALIZED;
  if (source == nullptr) return ROLU_STATUS_INVALID_PARAMETER;
  int32_t number = 0;
  const uint32_t status = QueryNumber(error_table, Command("WKSG\r"), number);
  if (status != ROLU_STATUS_SUCCESS) return status;
  const auto code = static_cast<uint16_t>(number);
  for (const WakeupCode& known : kWakeupCodes) {
    if (known.code != code) continue;
    *source = known.source;
    return ROLU_STATUS_SUCCESS;
  }
  return ROLU_STATUS_VPM_UNKNOWN_VALUE;
}

// The alarm of the clock is one of the wake-up sources.

uint32_t CVPMMgr::SetAlarmActive(char enable) {
  return SetWakeupSourceControlStatus(WAKEUP_SOURCE_RTC_ALARM, enable);
}

uint32_t CVPMMgr::GetAlarmActive(char* enabled) {
  return GetWakeupSourceControlStatus(WAKEUP_SOURCE_RTC_ALARM, enabled);
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
ROLU_STATUS KAVO_ROLU_VPM_SetAlarmActive(char enable) {
  return StatusCode(gVPMMgr.SetAlarmActive(enable));
}
ROLU_STATUS KAVO_ROLU_VPM_GetAlarmActive(char* enabled) {
  return StatusCode(gVPMMgr.GetAlarmActive(enabled));
}
