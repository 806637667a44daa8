#include "peripheralctrl/peripheral_manager.h"

#include "core/exported_call.h"
#include "core/process_objects.h"
#include "mcu/manager_lifecycle.h"
#include "peripheralctrl/gps_power.h"
#include "peripheralctrl/wireless_interface.h"

namespace {

constexpr int kHighestType = 9;

// The MCU's switch takes half a second to settle.
constexpr int kSwitchMs = 500;

}  // namespace

CPCMgr gPCMgr CONSTRUCTED_AT(kConstructPCMgr);

CPCMgr::CPCMgr() : error_table(nullptr), initialized(0) {}

CPCMgr::~CPCMgr() = default;

uint32_t CPCMgr::Initialize() {
  const uint32_t status = StartUpManager(initialized, error_table, gpio_gps_pin_init);
  if (status == ROLU_STATUS_SUCCESS) initialized = 1;
  return status;
}

uint32_t CPCMgr::Deinitialize() {
  return ShutDownManager(initialized, error_table);
}

uint32_t CPCMgr::GetLibVersion(unsigned char*) {
  return ROLU_STATUS_NOT_SUPPORTED;
}

uint32_t CPCMgr::SetPeripheralControl(PERIPHERAL_TYPE type, char state) {
  if (initialized != 1) return ROLU_STATUS_NOT_INITIALIZED;
  if (type > kHighestType) return ROLU_STATUS_INVALID_PARAMETER;
  switch (type) {
    case PERIPHERAL_TYPE_MCU_SWITCH:
      return Order(error_table, Command("MCS%1d%1d\r", type, static_cast<unsigned char>(state)), kSwitchMs);
    case PERIPHERAL_TYPE_WLAN:
      return SetWirelessInterface(state == 1) ? ROLU_STATUS_SUCCESS : ROLU_STATUS_FILE_ACCESS_FAILED;
    case PERIPHERAL_TYPE_GPS:
      return SetGpsPower(state == 1) ? ROLU_STATUS_SUCCESS : ROLU_STATUS_DEVICE_OPEN_FAILED;
    default:
      return ROLU_STATUS_NOT_SUPPORTED;
  }
}

uint32_t CPCMgr::GetPeripheralControl(PERIPHERAL_TYPE type, char* state) {
  if (initialized != 1) return ROLU_STATUS_NOT_INITIALIZED;
  if (type < PERIPHERAL_TYPE_MCU_SWITCH || type > PERIPHERAL_TYPE_GPS) return ROLU_STATUS_NOT_SUPPORTED;
  if (state == nullptr) return ROLU_STATUS_INVALID_PARAMETER;
  bool on = false;
  switch (type) {
    case PERIPHERAL_TYPE_WLAN:
      if (!GetWirelessInterface(on)) return ROLU_STATUS_FILE_ACCESS_FAILED;
      break;
    case PERIPHERAL_TYPE_GPS:
      if (!GetGpsPower(on)) return ROLU_STATUS_DEVICE_OPEN_FAILED;
      break;
    default: {
      const uint32_t status = GetMcuSwitch(on);
      if (status != ROLU_STATUS_SUCCESS) return status;
    }
  }
  *state = on ? 1 : 0;
  return ROLU_STATUS_SUCCESS;
}

uint32_t CPCMgr::GetMcuSwitch(bool& on) {
  Reply reply;
  const uint32_t status = Query(error_table, Command("MCG\r"), reply);
  if (status != ROLU_STATUS_SUCCESS) return status;
  if (reply.text[0] != '0' && reply.text[0] != '1') return ROLU_STATUS_FILE_ACCESS_FAILED;
  on = reply.text[0] == '1';
  return ROLU_STATUS_SUCCESS;
}

uint32_t CPCMgr::NotProvided() const {
  return initialized != 1 ? ROLU_STATUS_NOT_INITIALIZED : ROLU_STATUS_NOT_SUPPORTED;
}

uint32_t CPCMgr::SetRearViewSource(unsigned char) {
  return NotProvided();
}
uint32_t CPCMgr::GetRearViewSource(unsigned char*) {
  return NotProvided();
}
uint32_t CPCMgr::SetAutoRearView(char) {
  return NotProvided();
}
uint32_t CPCMgr::GetAutoRearView(char*) {
  return NotProvided();
}

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
