#include "kavo_rolu.h"

namespace {

// Always -1: the board has no temperature sensor, so no device is opened.
constexpr int msr_fd0 = -1;
[[maybe_unused]] constexpr int msr_fd1 = -1;

ROLU_STATUS NoSensor() {
  return msr_fd0 < 0 ? ROLU_STATUS_NOT_INITIALIZED : ROLU_STATUS_NOT_SUPPORTED;
}

}  // namespace

ROLU_STATUS KAVO_ROLU_TEMPERATURESENSOR_Initialize(void) {
  return ROLU_STATUS_NOT_SUPPORTED;
}
ROLU_STATUS KAVO_ROLU_TEMPERATURESENSOR_Deinitialize(void) {
  return ROLU_STATUS_NOT_SUPPORTED;
}
ROLU_STATUS KAVO_ROLU_TEMPERATURESENSOR_GetCPUCore1Temperature(uint32_t) {
  return NoSensor();
}
ROLU_STATUS KAVO_ROLU_TEMPERATURESENSOR_GetCPUCore2Temperature(uint32_t) {
  return NoSensor();
}
ROLU_STATUS KAVO_ROLU_TEMPERATURESENSOR_GetSystem1Temperature(uint32_t) {
  return NoSensor();
}
