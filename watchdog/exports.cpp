#include "core/exported_call.h"
#include "watchdog/watchdog_manager.h"

ROLU_STATUS KAVO_ROLU_WD_Initialize(uint8_t unused) {
  return StatusCode(gWDMgr.Initialize(unused));
}
ROLU_STATUS KAVO_ROLU_WD_Deinitialize(void) {
  return StatusCode(gWDMgr.Deinitialize());
}
ROLU_STATUS KAVO_ROLU_WD_GetLibVersion(unsigned char* version) {
  return StatusCode(gWDMgr.GetLibVersion(version));
}
ROLU_STATUS KAVO_ROLU_WD_Trigger(void) {
  return StatusCode(gWDMgr.Trigger());
}
extern "C" KAVO_ROLU_API ROLU_STATUS EnabledByByte(unsigned char enable) EXPORTED_AS("KAVO_ROLU_WD_Enabled");
ROLU_STATUS EnabledByByte(unsigned char enable) {
  return StatusCode(gWDMgr.Enabled(enable != 0));
}
ROLU_STATUS KAVO_ROLU_WD_GetTime(unsigned short* time) {
  return StatusCode(gWDMgr.GetTime(time));
}
ROLU_STATUS KAVO_ROLU_WD_SetTime(unsigned short time) {
  return StatusCode(gWDMgr.SetTime(time));
}
ROLU_STATUS KAVO_ROLU_WD_GetRange(unsigned long* minimum, unsigned long* maximum) {
  return StatusCode(gWDMgr.GetRange(minimum, maximum));
}
