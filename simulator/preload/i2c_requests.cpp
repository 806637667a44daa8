#include "simulator/preload/i2c_requests.h"

#include <errno.h>
#include <linux/i2c-dev.h>
#include <linux/i2c.h>
#include <string.h>

namespace rolu_sim {
namespace {

int Fail(int error) {
  errno = error;
  return -1;
}

int AskFunctions(DeviceId device, unsigned long* functions) {
  uint32_t answer = 0;
  const int result = ExchangeWithDevice(device, I2C_FUNCS, {}, {&answer, sizeof answer});
  if (result >= 0) *functions = answer;
  return result;
}

// The kernel limits the number of messages as well, but the bytes of each message alone.
int RunMessages(DeviceId device, unsigned long request, i2c_msg* messages, size_t count) {
  if (messages == nullptr || count == 0 || count > kMaxI2cMessages) return Fail(EINVAL);
  I2cMessageHeader headers[kMaxI2cMessages];
  Payload sent;
  Payload received;
  for (size_t i = 0; i < count; ++i) {
    const i2c_msg& message = messages[i];
    const bool is_read = (message.flags & I2C_M_RD) != 0;
    if (message.len > kMaxPayload) return Fail(EINVAL);
    if (message.buf == nullptr && message.len > 0) return Fail(EFAULT);
    headers[i] = {message.addr, message.flags, message.len};
    sent.Add(&headers[i], sizeof headers[i]);
    (is_read ? received : sent).Add(message.buf, message.len);
  }
  if (sent.size > kMaxExchange || received.size > kMaxExchange) return Fail(EINVAL);
  return ExchangeWithDevice(device, request, sent, received);
}

bool IsI2cBlock(uint32_t size) {
  return size == I2C_SMBUS_I2C_BLOCK_DATA || size == I2C_SMBUS_I2C_BLOCK_BROKEN;
}

// How many bytes a transfer carries besides its command; a negative errno when it is refused.
int DataLength(const i2c_smbus_ioctl_data& transfer) {
  const bool is_read = transfer.read_write == I2C_SMBUS_READ;
  if (!is_read && transfer.read_write != I2C_SMBUS_WRITE) return -EINVAL;
  if (transfer.size == I2C_SMBUS_QUICK || (transfer.size == I2C_SMBUS_BYTE && !is_read)) return 0;
  if (transfer.data == nullptr) return -EINVAL;
  const int block_length = transfer.data->block[0];
  const bool fits = block_length <= I2C_SMBUS_BLOCK_MAX;
  switch (transfer.size) {
    case I2C_SMBUS_BYTE:
    case I2C_SMBUS_BYTE_DATA:
      return 1;
    case I2C_SMBUS_WORD_DATA:
    case I2C_SMBUS_PROC_CALL:
      return 2;
    case I2C_SMBUS_I2C_BLOCK_BROKEN:
      // The older request: a read gives no length and gets as many bytes as there can be.
      if (is_read) return transfer.data->block[0] = I2C_SMBUS_BLOCK_MAX;
      [[fallthrough]];
    case I2C_SMBUS_I2C_BLOCK_DATA:
      return fits ? block_length : -EINVAL;
    case I2C_SMBUS_BLOCK_DATA:
      if (is_read) return -EOPNOTSUPP;
      return fits ? 1 + block_length : -EINVAL;
    case I2C_SMBUS_BLOCK_PROC_CALL:
      return -EOPNOTSUPP;
    default:
      return -EINVAL;
  }
}

// Runs an SMBus transfer as a write of its command and data, and a read. The kernel does the same on a bus
// without hardware for SMBus. The data are in the order of the wire: words begin with their lower byte.
int RunSmbus(DeviceId device, const i2c_smbus_ioctl_data& transfer) {
  const int data_length = DataLength(transfer);
  if (data_length < 0) return Fail(-data_length);
  const bool is_read = transfer.read_write == I2C_SMBUS_READ;
  const bool is_call = transfer.size == I2C_SMBUS_PROC_CALL;
  const bool has_command = transfer.size != I2C_SMBUS_QUICK && (transfer.size != I2C_SMBUS_BYTE || !is_read);
  const auto length = static_cast<uint16_t>(data_length);
  uint8_t* const data = length == 0 ? nullptr : transfer.data->block + (IsI2cBlock(transfer.size) ? 1 : 0);

  uint8_t written[2 + I2C_SMBUS_BLOCK_MAX] = {transfer.command};
  uint16_t written_length = has_command ? 1 : 0;
  if (length > 0 && (!is_read || is_call)) {
    memcpy(written + 1, data, length);
    written_length = static_cast<uint16_t>(written_length + length);
  }
  i2c_msg messages[2];
  size_t count = 0;
  if (has_command || !is_read) messages[count++] = {0, 0, written_length, written};
  if (is_read || is_call) messages[count++] = {0, I2C_M_RD, length, data};
  return RunMessages(device, I2C_SMBUS, messages, count) < 0 ? -1 : 0;
}

}  // namespace

int ControlDevice(DeviceId device, unsigned long request, void* argument) {
  const bool is_pointer = request == I2C_FUNCS || request == I2C_SMBUS || request == I2C_RDWR;
  if (is_pointer && argument == nullptr) return Fail(EFAULT);
  if (request == I2C_FUNCS) return AskFunctions(device, static_cast<unsigned long*>(argument));
  if (request == I2C_SMBUS) return RunSmbus(device, *static_cast<const i2c_smbus_ioctl_data*>(argument));
  if (request == I2C_RDWR) {
    const auto& transfer = *static_cast<const i2c_rdwr_ioctl_data*>(argument);
    return RunMessages(device, request, transfer.msgs, transfer.nmsgs);
  }
  return IoctlDevice(device, request, reinterpret_cast<uintptr_t>(argument));
}

}  // namespace rolu_sim
