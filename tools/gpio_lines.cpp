#include "tools/gpio_lines.h"

#include <fcntl.h>
#include <unistd.h>

namespace rolu {
namespace {

constexpr char kGpsValueFile[] = "/sys/class/gpio/gpio45/value";

// Not through the library, which may have failed to come up.
void SwitchGpsLineOn() {
  const int file = open(kGpsValueFile, O_WRONLY | O_CLOEXEC);
  if (file < 0) return;
  [[maybe_unused]] const ssize_t written = write(file, "1", 1);
  close(file);
}

}  // namespace

bool GpsLineIsOn() {
  const int file = open(kGpsValueFile, O_RDONLY | O_CLOEXEC);
  if (file < 0) return false;
  char level = '0';
  const bool on = read(file, &level, 1) == 1 && level == '1';
  close(file);
  return on;
}

bool PinsArePrepared() {
  return access("/sys/class/gpio/gpio37/value", F_OK) == 0 || access("/sys/class/gpio/export", F_OK) != 0;
}

ROLU_STATUS BringUpPeripherals() {
  const bool was_on = GpsLineIsOn();
  const ROLU_STATUS status = KAVO_ROLU_PERIPHERALCTRL_Initialize();
  if (was_on) SwitchGpsLineOn();
  return status;
}

}  // namespace rolu
