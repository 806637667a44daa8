#include "simulator/devices/i2c_bus.h"

#include <algorithm>
#include <utility>

namespace rolu_sim {
namespace {

constexpr std::uint64_t kHighestAddress = 0x7F;
constexpr std::string_view kResetCommand("\x0B\x01", 2);

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
    if (request != kSelectRequest && request != kForceSelectRequest) return -ENOTTY;
    const DeviceResult result = bus_.Select(argument);
    if (result == 0) address_ = static_cast<std::uint8_t>(argument);
    return result;
  }

 private:
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
  const auto& [device, selection_errno, transfer_errno] = slots_[address];
  DeviceResult result = -transfer_errno;
  if (result == 0 && device == nullptr) result = -EREMOTEIO;
  if (result == 0) result = is_read ? device->Read(bytes, count) : device->Write(bytes);
  if (transfers_.size() == kLogCapacity) transfers_.pop_front();
  transfers_.push_back({address, is_read, bytes, result});
  return result;
}

}  // namespace rolu_sim
