#include "simulator/devices/i2c_bus.h"

#include <algorithm>
#include <utility>

namespace rolu_sim {
namespace {

constexpr std::uint64_t kHighestAddress = 0x7F;
constexpr std::string_view kResetCommand("\x0B\x01", 2);

// An errno of 0 takes the address out again.
void SetRefusal(std::map<std::uint8_t, int>& refused, std::uint8_t address, int error) {
  if (error == 0) {
    refused.erase(address);
  } else {
    refused[address] = error;
  }
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
  if (bytes == kResetCommand) ++reset_count_;
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
    return bus_.ReadFrom(address_, bytes, std::min(capacity, kMaxTransferBytes));
  }

  DeviceResult Write(std::string_view bytes) override {
    return bus_.WriteTo(address_, bytes.substr(0, kMaxTransferBytes));
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
  devices_[address] = std::move(device);
}

void I2cBus::Detach(std::uint8_t address) {
  const std::lock_guard<std::mutex> lock(mutex_);
  devices_.erase(address);
}

void I2cBus::RefuseSelection(std::uint8_t address, int error) {
  const std::lock_guard<std::mutex> lock(mutex_);
  SetRefusal(refused_selections_, address, error);
}

void I2cBus::RefuseTransfers(std::uint8_t address, int error) {
  const std::lock_guard<std::mutex> lock(mutex_);
  SetRefusal(refused_transfers_, address, error);
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
  const auto refused = refused_selections_.find(static_cast<std::uint8_t>(address));
  return refused == refused_selections_.end() ? 0 : -refused->second;
}

DeviceResult I2cBus::WriteTo(std::uint8_t address, std::string_view bytes) {
  const std::lock_guard<std::mutex> lock(mutex_);
  DeviceResult result = 0;
  I2cDevice* const device = FindDevice(address, result);
  if (device != nullptr) result = device->Write(bytes);
  Record({address, false, std::string(bytes), result});
  return result;
}

DeviceResult I2cBus::ReadFrom(std::uint8_t address, std::string& bytes, std::size_t count) {
  const std::lock_guard<std::mutex> lock(mutex_);
  DeviceResult result = 0;
  I2cDevice* const device = FindDevice(address, result);
  if (device != nullptr) result = device->Read(bytes, count);
  Record({address, true, bytes, result});
  return result;
}

I2cDevice* I2cBus::FindDevice(std::uint8_t address, DeviceResult& error) const {
  const auto refused = refused_transfers_.find(address);
  const auto found = devices_.find(address);
  if (refused != refused_transfers_.end()) {
    error = -refused->second;
  } else if (found == devices_.end()) {
    error = -EREMOTEIO;
  } else {
    return found->second.get();
  }
  return nullptr;
}

void I2cBus::Record(I2cTransfer transfer) {
  if (transfers_.size() == kLogCapacity) transfers_.pop_front();
  transfers_.push_back(std::move(transfer));
}

}  // namespace rolu_sim
