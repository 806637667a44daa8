#ifndef MCU_SERIAL_PORT_H
#define MCU_SERIAL_PORT_H

// Opens a device with the POSIX open flags given, no others. The descriptor, or -1 with the cause in
// errno.
int Tovi_CreateFile(const char* path, unsigned long flags);

// Puts a terminal device into raw mode at a speed in bits per second. 1: done; 0: no terminal, or a
// speed the port cannot be set to; the descriptor stays open and the cause is in errno.
int Tovi_SetCommState(int descriptor, unsigned long speed);

#endif  // MCU_SERIAL_PORT_H
