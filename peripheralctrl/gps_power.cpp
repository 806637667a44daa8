#include "peripheralctrl/gps_power.h"

#include <fcntl.h>

#include "core/device_file.h"

namespace {

constexpr char kValueFile[] = "/sys/class/gpio/gpio45/value";

}  // namespace

void gpio_gps_pin_init() {
  WriteAttribute("/sys/class/gpio/export", O_WRONLY, "45");
  WriteAttribute("/sys/class/gpio/gpio45/direction", O_RDWR, "out");
}

bool SetGpsPower(bool on) {
  return WriteGpioValue(kValueFile, on);
}

bool GetGpsPower(bool& on) {
  return ReadGpioValue(kValueFile, on);
}
