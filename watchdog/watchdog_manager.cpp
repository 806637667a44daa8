#include "watchdog/watchdog_manager.h"

#include "core/exported_call.h"
#include "core/process_objects.h"
#include "mcu/manager_lifecycle.h"
#include "mcu/queries.h"

CWDMgr gWDMgr CONSTRUCTED_AT(kConstructWDMgr);

CWDMgr::CWDMgr() : initialized(0), error_table(nullptr) {}

CWDMgr::~CWDMgr() = default;

uint32_t CWDMgr::Initialize(int) {
  const uint32_t status = StartUpManager(initialized, error_table);
  if (status == ROLU_STATUS_SUCCESS) initialized = 1;
  return status;
}

uint32_t CWDMgr::Deinitialize() {
  return ShutDownManager(initialized, error_table);
}

uint32_t CWDMgr::GetLibVersion(unsigned char*) {
  return ROLU_STATUS_NOT_SUPPORTED;
}

uint32_t CWDMgr::Trigger() {
  if (initialized != 1) return ROLU_STATUS_NOT_INITIALIZED;
  return Order(error_table, Command("WDTR\r"), 0);
}

uint32_t CWDMgr::Enabled(bool enable) {
  if (initialized != 1) return ROLU_STATUS_NOT_INITIALIZED;
  return Order(error_table, Command(enable ? "WDTE\r" : "WDTD\r"), 0);
}

uint32_t CWDMgr::GetTime(unsigned short* time) {
  if (time == nullptr) return ROLU_STATUS_NULL_POINTER;
  if (initialized != 1) return ROLU_STATUS_NOT_INITIALIZED;
  int32_t number = 0;
  const uint32_t status = QueryNumber(error_table, Command("WDTG\r"), number);
  if (status == ROLU_STATUS_SUCCESS) *time = static_cast<unsigned short>(number);
  return status;
}

uint32_t CWDMgr::SetTime(unsigned short time) {
  if (initialized != 1) return ROLU_STATUS_NOT_INITIALIZED;
  if (time == 0) return ROLU_STATUS_INVALID_PARAMETER;
  return Order(error_table, Command("WDTS%04X\r", static_cast<unsigned int>(time)));
}

uint32_t CWDMgr::GetRange(unsigned long* minimum, unsigned long* maximum) {
  if (minimum == nullptr || maximum == nullptr) return ROLU_STATUS_NULL_POINTER;
  *minimum = 1;
  *maximum = 65535;
  return ROLU_STATUS_SUCCESS;
}

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
