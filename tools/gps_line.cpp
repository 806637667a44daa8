#include "tools/gps_line.h"

#include <fcntl.h>
#include <unistd.h>

namespace rolu {
namespace {

constexpr char kValueFile[] = "/sys/class/gpio/gpio45/value";

// Not through the library, which may have failed to come up.
void SwitchGpsLineOn() {
  const int file = open(kValueFile, O_WRONLY | O_CLOEXEC);
  if (file < 0) return;
  [[maybe_unused]] const ssize_t written = write(file, "1", 1);
  close(file);
}

}  // namespace

bool GpsLineIsOn() {
  const int file = open(kValueFile, O_RDONLY | O_CLOEXEC);
  if (file < 0) return false;
  char level = '0';
  const bool on = read(file, &level, 1) == 1 && level == '1';
  close(file);
  return on;
}

ROLU_STATUS BringUpPeripherals() {
  const bool was_on = GpsLineIsOn();
  const ROLU_STATUS status = KAVO_ROLU_PERIPHERALCTRL_Initialize();
  if (was_on) SwitchGpsLineOn();
  return status;
}

}  // namespace rolu
