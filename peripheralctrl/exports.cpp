#include "core/exported_call.h"
#include "peripheralctrl/peripheral_manager.h"

ROLU_STATUS KAVO_ROLU_PERIPHERALCTRL_Initialize(void) {
  return StatusCode(gPCMgr.Initialize());
}
ROLU_STATUS KAVO_ROLU_PERIPHERALCTRL_Deinitialize(void) {
  return StatusCode(gPCMgr.Deinitialize());
}
ROLU_STATUS KAVO_ROLU_PERIPHERALCTRL_GetLibVersion(unsigned char* version) {
  return StatusCode(gPCMgr.GetLibVersion(version));
}
ROLU_STATUS KAVO_ROLU_PERIPHERALCTRL_SetPeripheralControl(PERIPHERAL_TYPE type, char state) {
  return StatusCode(gPCMgr.SetPeripheralControl(type, state));
}
ROLU_STATUS KAVO_ROLU_PERIPHERALCTRL_GetPeripheralControl(PERIPHERAL_TYPE type, char* state) {
  return StatusCode(gPCMgr.GetPeripheralControl(type, state));
}
ROLU_STATUS KAVO_ROLU_PERIPHERALCTRL_SetRearViewSource(unsigned char source) {
  return StatusCode(gPCMgr.SetRearViewSource(source));
}
ROLU_STATUS KAVO_ROLU_PERIPHERALCTRL_GetRearViewSource(unsigned char* source) {
  return StatusCode(gPCMgr.GetRearViewSource(source));
}
ROLU_STATUS KAVO_ROLU_PERIPHERALCTRL_SetAutoRearView(char enable) {
  return StatusCode(gPCMgr.SetAutoRearView(enable));
}
ROLU_STATUS KAVO_ROLU_PERIPHERALCTRL_GetAutoRearView(char* enabled) {
  return StatusCode(gPCMgr.GetAutoRearView(enabled));
}
