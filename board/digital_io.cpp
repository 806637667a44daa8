#include <fcntl.h>
#include <unistd.h>

#include <cstring>

#include "core/device_file.h"
#include "core/process_objects.h"
#include "kavo_rolu.h"

namespace {

struct GpioLine {
  const char* number;
  const char* direction_file;
  const char* direction;
  const char* value_file;
};

// In the order in which they are prepared: input 1, input 2, output 1, output 2.
constexpr GpioLine kLines[] = {
    {"37", "/sys/class/gpio/gpio37/direction", "in", "/sys/class/gpio/gpio37/value"},
    {"36", "/sys/class/gpio/gpio36/direction", "in", "/sys/class/gpio/gpio36/value"},
    {"35", "/sys/class/gpio/gpio35/direction", "out", "/sys/class/gpio/gpio35/value"},
    {"34", "/sys/class/gpio/gpio34/direction", "out", "/sys/class/gpio/gpio34/value"},
};
constexpr const GpioLine* kInputs = kLines;
constexpr const GpioLine* kOutputs = kLines + 2;
constexpr int kPins = 2;

// Nothing sets it: the board has no device for the voice and Bluetooth pins.
constexpr uint8_t is_DIO_init = 0;

ROLU_STATUS PinNotProvided() {
  return is_DIO_init != 0 ? ROLU_STATUS_NOT_SUPPORTED : ROLU_STATUS_NOT_INITIALIZED;
}

// 1: the lines are exported and have their directions; 0: a file could not be opened, and the lines before it
// stay prepared.
int OpenDioDrv() {
  const int export_file = OpenDeviceFile("/sys/class/gpio/export", O_WRONLY);
  if (export_file == -1) return 0;
  for (const GpioLine& line : kLines) {
    // A line that is exported already refuses a second export.
    [[maybe_unused]] const ssize_t written = write(export_file, line.number, strlen(line.number));
  }
  close(export_file);
  for (const GpioLine& line : kLines) {
    if (!WriteAttribute(line.direction_file, O_RDWR, line.direction)) return 0;
  }
  return 1;
}

}  // namespace

ROLU_STATUS KAVO_ROLU_DIO_GetLibVersion(unsigned char*) {
  return ROLU_STATUS_NOT_SUPPORTED;
}

ROLU_STATUS KAVO_ROLU_DIO_Initialize(void) {
  return OpenDioDrv() == 1 ? ROLU_STATUS_SUCCESS : ROLU_STATUS_DEVICE_OPEN_FAILED;
}

ROLU_STATUS KAVO_ROLU_DIO_Deinitialize(void) {
  return ROLU_STATUS_SUCCESS;
}

ROLU_STATUS KAVO_ROLU_DIO_ReadDIPin(unsigned char* pins) {
  if (kavo_info.initialized == 0) return ROLU_STATUS_NOT_INITIALIZED;
  if (pins == nullptr) return ROLU_STATUS_NULL_POINTER;
  for (int pin = 0; pin < kPins; ++pin) {
    bool high = false;
    if (!ReadGpioValue(kInputs[pin].value_file, high)) return ROLU_STATUS_DEVICE_OPEN_FAILED;
    pins[pin] = high ? 1 : 0;
  }
  return ROLU_STATUS_SUCCESS;
}

ROLU_STATUS KAVO_ROLU_DIO_WriteDOPin(const unsigned char* pins) {
  if (kavo_info.initialized == 0) return ROLU_STATUS_NOT_INITIALIZED;
  if (pins == nullptr) return ROLU_STATUS_NULL_POINTER;
  for (int pin = 0; pin < kPins; ++pin) {
    if (!WriteGpioValue(kOutputs[pin].value_file, pins[pin] == 1)) return ROLU_STATUS_DEVICE_OPEN_FAILED;
  }
  return ROLU_STATUS_SUCCESS;
}

ROLU_STATUS KAVO_ROLU_DIO_GetVoiceSourceControlPin(uint32_t) {
  return PinNotProvided();
}
ROLU_STATUS KAVO_ROLU_DIO_SetVoiceSourceControlPin(uint32_t) {
  return PinNotProvided();
}
ROLU_STATUS KAVO_ROLU_DIO_GetBluetoothEnablePin(uint32_t) {
  return PinNotProvided();
}
ROLU_STATUS KAVO_ROLU_DIO_SetBluetoothEnablePin(uint32_t) {
  return PinNotProvided();
}
ROLU_STATUS KAVO_ROLU_DIO_GetVoiceModuleSelectPin(uint32_t) {
  return PinNotProvided();
}
ROLU_STATUS KAVO_ROLU_DIO_SetVoiceModuleSelectPin(uint32_t) {
  return PinNotProvided();
}
