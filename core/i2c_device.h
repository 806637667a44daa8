#ifndef CORE_I2C_DEVICE_H
#define CORE_I2C_DEVICE_H

#include <sys/ioctl.h>

inline constexpr char kI2cBusPath[] = "/dev/i2c-3";

// Addresses the 7-bit slave for the transfers on this descriptor. The forced request succeeds even
// when a kernel driver claims the address.
inline bool SelectI2cSlave(int bus, int address) {
  constexpr unsigned long kI2cSlaveForce = 0x0706;
  return ioctl(bus, kI2cSlaveForce, static_cast<unsigned long>(address)) >= 0;
}

#endif  // CORE_I2C_DEVICE_H
