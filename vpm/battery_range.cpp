#include "core/exported_call.h"
#include "mcu/reply_fields.h"
#include "vpm/vpm_manager.h"

bool CVPMMgr::IsBatteryMode(int32_t mode) {
  return mode == CAR_BATTERY_MODE_24V || mode == CAR_BATTERY_MODE_12V;
}

float CVPMMgr::VoltageScale(CAR_BATTERY_MODE mode) const {
  return mode == CAR_BATTERY_MODE_12V ? voltage_scale_mode3 : voltage_scale_mode2;
}

uint32_t CVPMMgr::GetBatteryVoltageRange(CAR_BATTERY_MODE mode, float* start, float* end, float* mid) {
  if (start == nullptr || end == nullptr || mid == nullptr) return ROLU_STATUS_INVALID_PARAMETER;
  if (!IsBatteryMode(mode)) return ROLU_STATUS_INVALID_PARAMETER;
  Reply reply;
  const uint32_t status = Query(error_table, Command("MCPR%d\r", mode), reply);
  if (status != ROLU_STATUS_SUCCESS) return status;
  const float scale = VoltageScale(mode);
  constexpr size_t kDigits = 4;
  *start = static_cast<float>(ReadHexadecimalField(reply.text, 0, kDigits)) * scale;
  *mid = static_cast<float>(ReadHexadecimalField(reply.text, 4, kDigits)) * scale;
  *end = static_cast<float>(ReadHexadecimalField(reply.text, 8, kDigits)) * scale;
  return ROLU_STATUS_SUCCESS;
}

uint32_t CVPMMgr::ReadBatteryRange(CAR_BATTERY_MODE mode) {
  float start = 0.0f;
  float end = 0.0f;
  float mid = 0.0f;
  const uint32_t status = GetBatteryVoltageRange(mode, &start, &end, &mid);
  if (status != ROLU_STATUS_SUCCESS) return status;
  BATTERY_INFO& range = battery_info[mode];
  range.range_end = end;
  range.range_start = start;
  range.range_mid = mid;
  range.range_mid_copy = mid;
  return ROLU_STATUS_SUCCESS;
}

uint32_t CVPMMgr::GetLBPThresholdInfo(CAR_BATTERY_MODE mode, BATTERY_INFO* info) {
  if (mode > CAR_BATTERY_MODE_12V || mode < 0) return ROLU_STATUS_NOT_SUPPORTED;
  if (info == nullptr) return ROLU_STATUS_INVALID_PARAMETER;
  *info = battery_info[mode];
  return ROLU_STATUS_SUCCESS;
}

ROLU_STATUS KAVO_ROLU_VPM_GetLBPThresholdInfo(CAR_BATTERY_MODE mode, BATTERY_INFO* info) {
  return StatusCode(gVPMMgr.GetLBPThresholdInfo(mode, info));
}
