#include "gsensor/gsensor_manager.h"

#include <cstdio>

#include "core/exported_call.h"
#include "core/process_objects.h"
#include "mcu/manager_lifecycle.h"
#include "mcu/unsolicited.h"

namespace {

constexpr float kDataScale = 3.90625f;  // 1000/256
constexpr float kThresholdPerStep = 62.5f;

constexpr int kLowestAlarmThreshold = 2000;
constexpr int kHighestAlarmThreshold = 15000;
constexpr int kLowestWakeupThreshold = 63;
constexpr int kHighestWakeupThreshold = 15999;

// Adds a half and truncates towards zero: -256 gives -999, not -1000.
int32_t Scaled(int32_t raw, float scale) {
  return static_cast<int32_t>(static_cast<float>(raw) * scale + 0.5f);
}

}  // namespace

CGSensorMgr gGSensorMgr CONSTRUCTED_AT(kConstructGSensorMgr);

CGSensorMgr::CGSensorMgr() : initialized(0), alarm_enabled(0), data_scale(0.0f), error_table(nullptr) {}

CGSensorMgr::~CGSensorMgr() = default;

uint32_t CGSensorMgr::Initialize(int) {
  const uint32_t status = StartUpManager(initialized, error_table);
  if (status != ROLU_STATUS_SUCCESS) return status;
  Order(error_table, Command("GSO\r"), 0);
  data_scale = kDataScale;
  initialized = 1;
  return ROLU_STATUS_SUCCESS;
}

uint32_t CGSensorMgr::Deinitialize() {
  if (initialized != 1) return ROLU_STATUS_NOT_INITIALIZED;
  AlarmEnabled(false);
  const uint32_t status = Order(error_table, Command("GSF\r"), 0);
  if (status != ROLU_STATUS_SUCCESS) return status;
  return ShutDownManager(initialized, error_table);
}

uint32_t CGSensorMgr::GetLibVersion(unsigned char*) {
  return ROLU_STATUS_NOT_SUPPORTED;
}

uint32_t CGSensorMgr::GetData(ROLU_GSENSOR_DATA* sample) {
  if (initialized != 1) return ROLU_STATUS_NOT_INITIALIZED;
  if (sample == nullptr) return ROLU_STATUS_NULL_POINTER;
  Reply reply;
  const uint32_t status = Query(error_table, Command("GSV\r"), reply);
  if (status != ROLU_STATUS_SUCCESS) return status;
  if (reply.text[0] == 'I') return ROLU_STATUS_GSENSOR_DATA_UNAVAILABLE;
  char sensor_state = 0;
  uint16_t x = 0;
  uint16_t y = 0;
  uint16_t z = 0;
  if (sscanf(reply.text, "%c%4hX%4hX%4hX", &sensor_state, &x, &y, &z) != 4) {
    return ROLU_STATUS_GSENSOR_INVALID_REPLY;
  }
  *sample = {static_cast<int16_t>(x), static_cast<int16_t>(y), static_cast<int16_t>(z)};
  Scale(*sample);
  return ROLU_STATUS_SUCCESS;
}

uint32_t CGSensorMgr::QueryRegister(const char* command, unsigned int& value) {
  Reply reply;
  const uint32_t status = Query(error_table, Command("%s", command), reply);
  if (status != ROLU_STATUS_SUCCESS) return status;
  if (sscanf(reply.text, "%2X", &value) != 1) return ROLU_STATUS_GSENSOR_INVALID_REPLY;
  // The pattern also reads a sign; a register has 8 bits.
  value &= 0xFFU;
  return ROLU_STATUS_SUCCESS;
}

uint32_t CGSensorMgr::GetResolution(ROLU_GSENSOR_RES* resolution) {
  if (initialized != 1) return ROLU_STATUS_NOT_INITIALIZED;
  if (resolution == nullptr) return ROLU_STATUS_NULL_POINTER;
  unsigned int code = 0;
  const uint32_t status = QueryRegister("GSRG\r", code);
  if (status == ROLU_STATUS_SUCCESS) *resolution = static_cast<ROLU_GSENSOR_RES>(code);
  return status;
}

uint32_t CGSensorMgr::SetResolution(ROLU_GSENSOR_RES resolution) {
  if (initialized != 1) return ROLU_STATUS_NOT_INITIALIZED;
  if (resolution < ROLU_GSENSOR_RES_0 || resolution > ROLU_GSENSOR_RES_3)
    return ROLU_STATUS_INVALID_PARAMETER;
  return Order(error_table, Command("GSRS%02X\r", static_cast<unsigned int>(resolution)));
}

uint32_t CGSensorMgr::AlarmEnabled(bool on) {
  if (initialized != 1) return ROLU_STATUS_NOT_INITIALIZED;
  if (on && alarm_enabled != 0) return ROLU_STATUS_GSENSOR_ALARM_ALREADY_ENABLED;
  const uint32_t status = Order(error_table, Command("ARGI%02X\r", on ? 1U : 0U), 0);
  if (status == ROLU_STATUS_SUCCESS) alarm_enabled = on ? 1 : 0;
  return status;
}

uint32_t CGSensorMgr::SetAlarmEvent(void* event) {
  if (event == nullptr) return ROLU_STATUS_NULL_POINTER;
  if (initialized != 1) return ROLU_STATUS_NOT_INITIALIZED;
  set_gsensor_alarm_event(event);
  return ROLU_STATUS_SUCCESS;
}

uint32_t CGSensorMgr::GetAlarmData(ROLU_GSENSOR_DATA* sample) {
  if (sample == nullptr) return ROLU_STATUS_NULL_POINTER;
  if (initialized != 1) return ROLU_STATUS_NOT_INITIALIZED;
  switch (pop_gsensor_alarm_data(sample)) {
    case 0:
      Scale(*sample);
      return ROLU_STATUS_SUCCESS;
    case -2:
      return ROLU_STATUS_GSENSOR_NO_ALARM_DATA;
    default:
      return ROLU_STATUS_TIMEOUT;
  }
}

uint32_t CGSensorMgr::GetThreshold(const char* command, int* threshold) {
  if (initialized != 1) return ROLU_STATUS_NOT_INITIALIZED;
  if (threshold == nullptr) return ROLU_STATUS_NULL_POINTER;
  unsigned int steps = 0;
  const uint32_t status = QueryRegister(command, steps);
  if (status != ROLU_STATUS_SUCCESS) return status;
  const float exact = static_cast<float>(steps) * kThresholdPerStep;
  *threshold = static_cast<int>(static_cast<double>(exact) + 0.5);
  return ROLU_STATUS_SUCCESS;
}

uint32_t CGSensorMgr::GetAlarmThreshold(int* threshold) {
  return GetThreshold("GSIG\r", threshold);
}

uint32_t CGSensorMgr::SetAlarmThreshold(int threshold) {
  if (initialized != 1) return ROLU_STATUS_NOT_INITIALIZED;
  if (threshold < kLowestAlarmThreshold || threshold > kHighestAlarmThreshold) {
    return ROLU_STATUS_INVALID_PARAMETER;
  }
  return Order(error_table, Command("GSIS%02X\r", static_cast<unsigned int>(threshold * 10 / 625)));
}

uint32_t CGSensorMgr::GetWakeupThreshold(int* threshold) {
  return GetThreshold("GSWG\r", threshold);
}

uint32_t CGSensorMgr::SetWakeupThreshold(int threshold) {
  if (initialized != 1) return ROLU_STATUS_NOT_INITIALIZED;
  if (threshold < kLowestWakeupThreshold || threshold > kHighestWakeupThreshold) {
    return ROLU_STATUS_INVALID_PARAMETER;
  }
  const auto steps = static_cast<unsigned int>(static_cast<float>(threshold) / kThresholdPerStep);
  return Order(error_table, Command("GSWS%02X\r", steps));
}

void CGSensorMgr::Scale(ROLU_GSENSOR_DATA& sample) const {
  sample = {Scaled(sample.x, data_scale), Scaled(sample.y, data_scale), Scaled(sample.z, data_scale)};
}

ROLU_STATUS KAVO_ROLU_GSENSOR_Initialize(uint8_t unused) {
  return StatusCode(gGSensorMgr.Initialize(unused));
}
ROLU_STATUS KAVO_ROLU_GSENSOR_Deinitialize(void) {
  return StatusCode(gGSensorMgr.Deinitialize());
}
ROLU_STATUS KAVO_ROLU_GSENSOR_GetLibVersion(unsigned char* version) {
  return StatusCode(gGSensorMgr.GetLibVersion(version));
}
ROLU_STATUS KAVO_ROLU_GSENSOR_GetData(ROLU_GSENSOR_DATA* sample) {
  return StatusCode(gGSensorMgr.GetData(sample));
}
ROLU_STATUS KAVO_ROLU_GSENSOR_GetResolution(ROLU_GSENSOR_RES* resolution) {
  return StatusCode(gGSensorMgr.GetResolution(resolution));
}
ROLU_STATUS KAVO_ROLU_GSENSOR_SetResolution(ROLU_GSENSOR_RES resolution) {
  return StatusCode(gGSensorMgr.SetResolution(resolution));
}
extern "C" KAVO_ROLU_API ROLU_STATUS AlarmEnabledByByte(unsigned char on)
    EXPORTED_AS("KAVO_ROLU_GSENSOR_AlarmEnabled");
ROLU_STATUS AlarmEnabledByByte(unsigned char on) {
  return StatusCode(gGSensorMgr.AlarmEnabled(on != 0));
}
ROLU_STATUS KAVO_ROLU_GSENSOR_SetAlarmEvent(void* event) {
  return StatusCode(gGSensorMgr.SetAlarmEvent(event));
}
ROLU_STATUS KAVO_ROLU_GSENSOR_GetAlarmData(ROLU_GSENSOR_DATA* sample) {
  return StatusCode(gGSensorMgr.GetAlarmData(sample));
}
ROLU_STATUS KAVO_ROLU_GSENSOR_GetAlarmThreshold(int* threshold) {
  return StatusCode(gGSensorMgr.GetAlarmThreshold(threshold));
}
ROLU_STATUS KAVO_ROLU_GSENSOR_SetAlarmThreshold(int threshold) {
  return StatusCode(gGSensorMgr.SetAlarmThreshold(threshold));
}
ROLU_STATUS KAVO_ROLU_GSENSOR_GetWakeupThreshold(int* threshold) {
  return StatusCode(gGSensorMgr.GetWakeupThreshold(threshold));
}
ROLU_STATUS KAVO_ROLU_GSENSOR_SetWakeupThreshold(int threshold) {
  return StatusCode(gGSensorMgr.SetWakeupThreshold(threshold));
}
