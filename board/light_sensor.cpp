#include <fcntl.h>

#include <cstdlib>

#include "core/device_file.h"
#include "core/process_objects.h"
#include "kavo_rolu.h"

namespace {

constexpr char kLuxFile[] =
    "/sys/devices/platform/ehci-omap.0/usb1/1-2/1-2.4/1-2.4:1.3/ttyUSB3/tty/ttyUSB3/serio1/lux";

// The driver's longest number has so many characters.
constexpr size_t kLuxCharacters = 5;

}  // namespace

ROLU_STATUS KAVO_ROLU_LIGHTSENSOR_GetLibVersion(unsigned char*) {
  return ROLU_STATUS_NOT_SUPPORTED;
}

ROLU_STATUS KAVO_ROLU_LIGHTSENSOR_GetStatus(unsigned short* reading) {
  if (kavo_info.initialized == 0) return ROLU_STATUS_NOT_INITIALIZED;
  if (reading == nullptr) return ROLU_STATUS_NULL_POINTER;
  char text[kLuxCharacters + 1];
  if (!ReadAttribute(kLuxFile, O_RDONLY, text, sizeof text)) return ROLU_STATUS_DEVICE_OPEN_FAILED;
  *reading = static_cast<unsigned short>(strtol(text, nullptr, 10));
  return ROLU_STATUS_SUCCESS;
}
