#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/devices/device.h"

namespace rolu_sim {

// A device on the I2C bus. The bus calls it under its own lock, one call at a time.
class I2cDevice {
 public:
  virtual ~I2cDevice() = default;
  virtual DeviceResult Write(std::string_view bytes) = 0;
  virtual DeviceResult Read(std::string& bytes, std::size_t count) = 0;
};

// 256 byte registers. The first byte of a write names a register, further bytes go into it and the
// following ones; a read takes from the named register onwards. Registers wrap after 255.
class I2cRegisterDevice : public I2cDevice {
 public:
  DeviceResult Write(std::string_view bytes) override;
  DeviceResult Read(std::string& bytes, std::size_t count) override;

  // Safe beside the bus; these do not move the named register.
  std::uint8_t Register(std::uint8_t index) const { return registers_[index]; }
  void SetRegister(std::uint8_t index, std::uint8_t value) { registers_[index] = value; }

 private:
  std::array<std::atomic<std::uint8_t>, 256> registers_{};
  std::uint8_t selected_ = 0;
};

// The board's reset controller: the bytes 0x0B 0x01 in one write ask for a reset, which is counted.
class ResetController : public I2cDevice {
 public:
  static constexpr std::uint8_t kAddress = 0x78;

  DeviceResult Write(std::string_view bytes) override;
  DeviceResult Read(std::string& bytes, std::size_t count) override;

  int ResetCount() const { return reset_count_; }

 private:
  std::atomic<int> reset_count_{0};
};

// One transfer that reached the bus: the bytes and its result, a count or a negative errno.
struct I2cTransfer {
  std::uint8_t address = 0;
  bool is_read = false;
  std::string bytes;
  DeviceResult result = 0;
};

// An I2C bus behind an i2c-dev node. Addresses are the 7-bit ones. Selecting an address always
// succeeds unless it is set to refuse; a transfer with an address where nothing sits is not
// acknowledged (EREMOTEIO). Any thread may call any member.
class I2cBus : public Device {
 public:
  static constexpr std::uint32_t kSelectRequest = 0x0703;       // I2C_SLAVE
  static constexpr std::uint32_t kForceSelectRequest = 0x0706;  // I2C_SLAVE_FORCE
  static constexpr std::size_t kMaxTransferBytes = 8192;        // as the kernel's i2c-dev cuts them
  static constexpr std::size_t kLogCapacity = 65536;

  void Attach(std::uint8_t address, std::shared_ptr<I2cDevice> device);
  void Detach(std::uint8_t address) { Attach(address, nullptr); }

  // Make an address answer an errno to its selection, or to each transfer; 0 ends it.
  void RefuseSelection(std::uint8_t address, int error);
  void RefuseTransfers(std::uint8_t address, int error);

  // The transfers so far, oldest first; the newest kLogCapacity are kept.
  std::vector<I2cTransfer> Transfers() const;
  void ClearTransfers();

  std::uint32_t Mode() const override { return S_IFCHR | 0660; }
  DeviceResult Open(const OpenFlags& flags, std::unique_ptr<OpenDevice>& opened) override;

 private:
  class Descriptor;

  // What is at an address: a device that sits there, and the errnos with which it refuses.
  struct Slot {
    std::shared_ptr<I2cDevice> device;
    int selection_errno = 0;
    int transfer_errno = 0;
  };

  DeviceResult Select(std::uint64_t address) const;
  DeviceResult Transfer(std::uint8_t address, bool is_read, std::string& bytes, std::size_t count);

  mutable std::mutex mutex_;
  std::array<Slot, 256> slots_;
  std::deque<I2cTransfer> transfers_;
};

}  // namespace rolu_sim
