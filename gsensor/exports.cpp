#include "core/exported_call.h"
#include "gsensor/gsensor_manager.h"

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
