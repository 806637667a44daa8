#include "mcu/serial_port.h"

#include <fcntl.h>
#include <termios.h>

namespace {

struct SpeedConstant {
  unsigned long bits_per_second;
  speed_t constant;
};

constexpr SpeedConstant kSpeeds[] = {
    {300, B300},       {600, B600},       {1800, B1800},     {2400, B2400},   {4800, B4800},
    {9600, B9600},     {19200, B19200},   {38400, B38400},   {57600, B57600}, {115200, B115200},
    {230400, B230400}, {460800, B460800}, {921600, B921600},
};

const SpeedConstant* FindSpeed(unsigned long bits_per_second) {
  for (const SpeedConstant& speed : kSpeeds) {
    if (speed.bits_per_second == bits_per_second) return &speed;
  }
  return nullptr;
}

}  // namespace

int Tovi_CreateFile(const char* path, unsigned long flags) {
  return open(path, static_cast<int>(flags));
}

int Tovi_SetCommState(int descriptor, unsigned long speed) {
  termios attributes{};
  if (tcgetattr(descriptor, &attributes) != 0) return 0;
  const SpeedConstant* entry = FindSpeed(speed);
  if (entry == nullptr) return 0;
  cfmakeraw(&attributes);
  cfsetispeed(&attributes, entry->constant);
  cfsetospeed(&attributes, entry->constant);
  return tcsetattr(descriptor, TCSANOW, &attributes) == 0 ? 1 : 0;
}
