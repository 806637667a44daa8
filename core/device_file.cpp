#include "core/device_file.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cstring>

int OpenDeviceFile(const char* path, int flags) {
  const int file = open(path, flags);
  if (file != -1) SetCloseOnExec(file);
  return file;
}

int AboveStandardStreams(int descriptor) {
  if (descriptor == -1 || descriptor > STDERR_FILENO) return descriptor;
  const int moved = fcntl(descriptor, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
  close(descriptor);
  return moved;
}

void SetCloseOnExec(int descriptor) {
  fcntl(descriptor, F_SETFD, FD_CLOEXEC);
}

bool WriteAttribute(const char* path, int flags, const char* text) {
  const int file = OpenDeviceFile(path, flags);
  if (file == -1) return false;
  [[maybe_unused]] const ssize_t written = write(file, text, strlen(text));
  close(file);
  return true;
}

bool ReadAttribute(const char* path, int flags, char* buffer, size_t capacity) {
  memset(buffer, 0, capacity);
  const int file = OpenDeviceFile(path, flags);
  if (file == -1) return false;
  [[maybe_unused]] const ssize_t count = read(file, buffer, capacity - 1);
  close(file);
  return true;
}

bool ReadGpioValue(const char* path, bool& high) {
  char value[3];
  if (!ReadAttribute(path, O_RDWR, value, sizeof value)) return false;
  high = value[0] == '1';
  return true;
}

bool WriteGpioValue(const char* path, bool high) {
  return WriteAttribute(path, O_RDWR, high ? "1" : "0");
}

bool SelectI2cSlave(int bus, int address) {
  constexpr unsigned long kI2cSlaveForce = 0x0706;
  return ioctl(bus, kI2cSlaveForce, static_cast<unsigned long>(address)) >= 0;
}
