// Device and attribute files are opened, used and closed within one call.
#ifndef CORE_DEVICE_FILE_H
#define CORE_DEVICE_FILE_H

#include <cstddef>

// open() with the flags given, no others; the descriptor is then made close-on-exec, so that a shell
// run at the same time does not hold the device. -1 with the cause in errno.
int OpenDeviceFile(const char* path, int flags);

// For a descriptor that was not opened with OpenDeviceFile.
void SetCloseOnExec(int descriptor);

// Moves a descriptor that stays open to a number above the standard streams': in a process that has closed
// these streams, printed text would go to the device. Returns -1 for -1. If the descriptor cannot be moved,
// closes it and returns -1.
int AboveStandardStreams(int descriptor);

// Opens an attribute, writes the text in one write, without a newline, and closes it. The result of the write
// does not matter. False if it could not be opened.
bool WriteAttribute(const char* path, int flags, const char* text);

// Opens an attribute, reads up to `capacity` - 1 characters into the cleared buffer and closes it.
// False if it could not be opened; an attribute that cannot be read reads as empty.
bool ReadAttribute(const char* path, int flags, char* buffer, size_t capacity);

// The value file of a GPIO line: '1' is high. False if it could not be opened.
bool ReadGpioValue(const char* path, bool& high);
bool WriteGpioValue(const char* path, bool high);

inline constexpr char kI2cBusPath[] = "/dev/i2c-3";

// Addresses the 7-bit slave for the transfers on this descriptor of the bus. The request is the forced one,
// which succeeds even when a kernel driver claims the address.
bool SelectI2cSlave(int bus, int address);

#endif  // CORE_DEVICE_FILE_H
