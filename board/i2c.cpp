#include <fcntl.h>
#include <unistd.h>

#include "core/deadline.h"
#include "core/device_file.h"
#include "kavo_rolu.h"

namespace {

// A slave prepares its answer between the two phases of a combined transfer.
constexpr int kPhasePauseMs = 100;

// Runs a transfer on the bus with the slave selected; `transfer` returns false when it failed.
template <typename Transfer>
ROLU_STATUS OnBus(const ROLU_IIC_TRANSFER& record, Transfer transfer) {
  const int bus = OpenDeviceFile(kI2cBusPath, O_RDWR);
  if (bus == -1) return ROLU_STATUS_DEVICE_OPEN_FAILED;
  // The record holds the address in its shifted form, with the direction in the lowest bit.
  const bool done = SelectI2cSlave(bus, record.slave_address >> 1) && transfer(bus);
  close(bus);
  return done ? ROLU_STATUS_SUCCESS : ROLU_STATUS_DEVICE_IO_FAILED;
}

// A short transfer counts as done.
bool ReadPhase(int bus, unsigned char* data, uint32_t length) {
  return read(bus, data, length) != -1;
}
bool WritePhase(int bus, const unsigned char* data, uint32_t length) {
  return write(bus, data, length) != -1;
}

}  // namespace

ROLU_STATUS KAVO_ROLU_IIC_GetLibVersion(unsigned char*) {
  return ROLU_STATUS_NOT_SUPPORTED;
}

ROLU_STATUS KAVO_ROLU_IIC_Available(void) {
  return ROLU_STATUS_IIC_AVAILABLE;
}

ROLU_STATUS KAVO_ROLU_IIC_Read(ROLU_IIC_TRANSFER* transfer) {
  if (transfer == nullptr || transfer->data == nullptr) return ROLU_STATUS_INVALID_PARAMETER;
  return OnBus(*transfer, [=](int bus) { return ReadPhase(bus, transfer->data, transfer->data_length); });
}

ROLU_STATUS KAVO_ROLU_IIC_Write(ROLU_IIC_TRANSFER* transfer) {
  if (transfer == nullptr || transfer->data == nullptr) return ROLU_STATUS_INVALID_PARAMETER;
  return OnBus(*transfer, [=](int bus) { return WritePhase(bus, transfer->data, transfer->data_length); });
}

ROLU_STATUS KAVO_ROLU_IIC_WriteReadCombine(ROLU_IIC_TRANSFER* transfer) {
  if (transfer == nullptr || transfer->read_data == nullptr || transfer->data == nullptr) {
    return ROLU_STATUS_INVALID_PARAMETER;
  }
  return OnBus(*transfer, [=](int bus) {
    if (!WritePhase(bus, transfer->data, transfer->data_length)) return false;
    SleepForMs(kPhasePauseMs);
    return ReadPhase(bus, transfer->read_data, transfer->read_length);
  });
}
