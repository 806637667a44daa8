#include "simulator/devices/i2c_bus.h"

#include <linux/i2c-dev.h>
#include <linux/i2c.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <optional>
#include <utility>

#include "simulator/devices/device_protocol.h"

namespace rolu_sim {
namespace {

constexpr std::uint64_t kHighestAddress = 0x7F;
constexpr std::string_view kResetCommand("\x0B\x01", 2);

// A plain I2C bus: the kernel makes SMBus transfers out of I2C messages there, but cannot read a block whose
// length the device tells. Packet error checks are not simulated.
constexpr std::uint32_t kFunctions = I2C_FUNC_I2C | (I2C_FUNC_SMBUS_EMUL & ~I2C_FUNC_SMBUS_PEC);

// Takes the next `size` bytes. They are missing if the program did not send them.
std::optional<std::string_view> Take(std::string_view& rest, std::size_t size) {
  if (rest.size() < size) return std::nullopt;
  const std::string_view taken = rest.substr(0, size);
  rest.remove_prefix(size);
  return taken;
}

}  // namespace

DeviceResult I2cRegisterDevice::Write(std::string_view bytes) {
  if (bytes.empty()) return 0;
  selected_ = static_cast<std::uint8_t>(bytes[0]);
  for (const char byte : bytes.substr(1)) registers_[selected_++] = static_cast<std::uint8_t>(byte);
  return static_cast<DeviceResult>(bytes.size());
}

DeviceResult I2cRegisterDevice::Read(std::string& bytes, std::size_t count) {
  for (std::size_t taken = 0; taken < count; ++taken)
    bytes += static_cast<char>(registers_[selected_++].load());
  return static_cast<DeviceResult>(count);
}

DeviceResult ResetController::Write(std::string_view bytes) {
  if (bytes == kResetCommand) {
    ++reset_count_;
    reset_computer_();
  }
  return static_cast<DeviceResult>(bytes.size());
}

DeviceResult ResetController::Read(std::string& bytes, std::size_t count) {
  bytes.assign(count, '\0');
  return static_cast<DeviceResult>(count);
}

class I2cBus::Descriptor : public OpenDevice {
 public:
  explicit Descriptor(I2cBus& bus) : bus_(bus) {}

  DeviceResult Read(std::string& bytes, std::size_t capacity, std::uint64_t /*offset*/) override {
    return bus_.Transfer(address_, true, bytes, std::min(capacity, kMaxTransferBytes));
  }

  DeviceResult Write(std::string_view bytes) override {
    std::string written(bytes.substr(0, kMaxTransferBytes));
    return bus_.Transfer(address_, false, written, written.size());
  }

  DeviceResult Ioctl(std::uint32_t request, std::uint64_t argument) override {
    switch (request) {
      case kSelectRequest:
      case kForceSelectRequest:
        return SelectAddress(argument);
      case I2C_RETRIES:
      case I2C_TIMEOUT:
        return argument > INT_MAX ? -EINVAL : 0;
      case I2C_PEC:
      case I2C_TENBIT:
        return argument == 0 ? 0 : -EOPNOTSUPP;
      default:
        return -ENOTTY;
    }
  }

  DeviceResult Exchange(std::uint32_t request, std::string_view sent, std::string& answer) override {
    switch (request) {
      case I2C_FUNCS:
        answer.assign(reinterpret_cast<const char*>(&kFunctions), sizeof kFunctions);
        return 0;
      case I2C_SMBUS:
      case I2C_RDWR:
        return RunMessages(sent, request == I2C_SMBUS, answer);
      default:
        return -ENOTTY;
    }
  }

 private:
  DeviceResult SelectAddress(std::uint64_t address) {
    const DeviceResult result = bus_.Select(address);
    if (result == 0) address_ = static_cast<std::uint8_t>(address);
    return result;
  }

  // An SMBus transfer goes to the selected address.
  DeviceResult RunMessages(std::string_view sent, bool to_selected, std::string& answer) {
    std::vector<Message> messages;
    while (!sent.empty()) {
      const auto header_bytes = Take(sent, sizeof(I2cMessageHeader));
      if (!header_bytes) return -EINVAL;
      I2cMessageHeader header;
      std::memcpy(&header, header_bytes->data(), sizeof header);
      const bool is_read = (header.flags & I2C_M_RD) != 0;
      if ((header.flags & ~I2C_M_RD) != 0) return -EOPNOTSUPP;
      if (header.address > kHighestAddress || header.length > kMaxTransferBytes) return -EINVAL;
      const auto bytes = Take(sent, is_read ? 0 : header.length);
      if (!bytes) return -EINVAL;
      const auto address = to_selected ? address_ : static_cast<std::uint8_t>(header.address);
      messages.push_back({address, is_read, header.length, std::string(*bytes)});
    }
    return bus_.Transfer(messages, answer);
  }

  I2cBus& bus_;
  std::uint8_t address_ = 0;
};

void I2cBus::Attach(std::uint8_t address, std::shared_ptr<I2cDevice> device) {
  const std::lock_guard<std::mutex> lock(mutex_);
  slots_[address].device = std::move(device);
}

void I2cBus::RefuseSelection(std::uint8_t address, int error) {
  const std::lock_guard<std::mutex> lock(mutex_);
  slots_[address].selection_errno = error;
}

void I2cBus::RefuseTransfers(std::uint8_t address, int error) {
  const std::lock_guard<std::mutex> lock(mutex_);
  slots_[address].transfer_errno = error;
}

std::vector<I2cTransfer> I2cBus::Transfers() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return {transfers_.begin(), transfers_.end()};
}

void I2cBus::ClearTransfers() {
  const std::lock_guard<std::mutex> lock(mutex_);
  transfers_.clear();
}

DeviceResult I2cBus::Open(const OpenFlags& /*flags*/, std::unique_ptr<OpenDevice>& opened) {
  opened = std::make_unique<Descriptor>(*this);
  return 0;
}

DeviceResult I2cBus::Select(std::uint64_t address) const {
  if (address > kHighestAddress) return -EINVAL;
  const std::lock_guard<std::mutex> lock(mutex_);
  return -slots_[static_cast<std::uint8_t>(address)].selection_errno;
}

DeviceResult I2cBus::Transfer(std::uint8_t address, bool is_read, std::string& bytes, std::size_t count) {
  const std::lock_guard<std::mutex> lock(mutex_);
  return TransferLocked(address, is_read, bytes, count);
}

DeviceResult I2cBus::Transfer(const std::vector<Message>& messages, std::string& read) {
  const std::lock_guard<std::mutex> lock(mutex_);
  for (const auto& [address, is_read, length, written] : messages) {
    std::string bytes = written;
    const DeviceResult result = TransferLocked(address, is_read, bytes, length);
    if (result < 0) return result;
    if (is_read) read += bytes;
  }
  return static_cast<DeviceResult>(messages.size());
}

DeviceResult I2cBus::TransferLocked(std::uint8_t address, bool is_read, std::string& bytes,
                                    std::size_t count) {
  const auto& [device, selection_errno, transfer_errno] = slots_[address];
  DeviceResult result = -transfer_errno;
  if (result == 0 && device == nullptr) result = -EREMOTEIO;
  if (result == 0) result = is_read ? device->Read(bytes, count) : device->Write(bytes);
  if (transfers_.size() == kLogCapacity) transfers_.pop_front();
  transfers_.push_back({address, is_read, bytes, result});
  return result;
}

}  // namespace rolu_sim
