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

// A device on the I2C bus. The bus calls it under the bus's lock, one call at a time.
class I2cDevice {
 public:
  virtual ~I2cDevice() = default;
  virtual DeviceResult Write(std::string_view bytes) = 0;
  virtual DeviceResult Read(std::string& bytes, std::size_t count) = 0;
};

// A device with 256 registers of one byte. The first byte of a write selects a register; each further byte
// goes into the selected register and moves on to the next one. A read begins at the selected register.
// Register 0 follows register 255.
class I2cRegisterDevice : public I2cDevice {
 public:
  DeviceResult Write(std::string_view bytes) override;
  DeviceResult Read(std::string& bytes, std::size_t count) override;

  // Safe while programs use the bus. These calls do not move the selected register.
  std::uint8_t Register(std::uint8_t index) const { return registers_[index]; }
  void SetRegister(std::uint8_t index, std::uint8_t value) { registers_[index] = value; }

 private:
  std::array<std::atomic<std::uint8_t>, 256> registers_{};
  std::uint8_t selected_ = 0;
};

// The board's reset controller. It resets the computer for each write that is exactly the bytes 0x0B 0x01.
class ResetController : public I2cDevice {
 public:
  static constexpr std::uint8_t kAddress = 0x78;

  explicit ResetController(std::function<void()> reset_computer)
      : reset_computer_(std::move(reset_computer)) {}

  DeviceResult Write(std::string_view bytes) override;
  DeviceResult Read(std::string& bytes, std::size_t count) override;

  int ResetCount() const { return reset_count_; }

 private:
  const std::function<void()> reset_computer_;
  std::atomic<int> reset_count_{0};
};

// One transfer that reached the bus: the bytes and its result, a count or a negative errno.
struct I2cTransfer {
  std::uint8_t address = 0;
  bool is_read = false;
  std::string bytes;
  DeviceResult result = 0;
};

// An I2C bus behind an i2c-dev node. All addresses are 7-bit addresses. Selecting an address succeeds unless
// RefuseSelection refuses it. A transfer to an address without a device fails with EREMOTEIO. Any thread may
// call any member.
class I2cBus : public Device {
 public:
  static constexpr std::uint32_t kSelectRequest = 0x0703;       // I2C_SLAVE
  static constexpr std::uint32_t kForceSelectRequest = 0x0706;  // I2C_SLAVE_FORCE
  static constexpr std::size_t kMaxTransferBytes = 8192;        // as the kernel's i2c-dev cuts them
  static constexpr std::size_t kLogCapacity = 65536;

  void Attach(std::uint8_t address, std::shared_ptr<I2cDevice> device);
  void Detach(std::uint8_t address) { Attach(address, nullptr); }

  // Make the selection of an address, or each transfer to it, fail with an errno; 0 ends the fault.
  void RefuseSelection(std::uint8_t address, int error);
  void RefuseTransfers(std::uint8_t address, int error);

  // The transfers so far, oldest first; the newest kLogCapacity are kept.
  std::vector<I2cTransfer> Transfers() const;
  void ClearTransfers();

  std::uint32_t Mode() const override { return S_IFCHR | 0660; }
  DeviceResult Open(const OpenFlags& flags, std::unique_ptr<OpenDevice>& opened) override;

 private:
  class Descriptor;

  // The device at an address, and the errnos with which the address refuses.
  struct Slot {
    std::shared_ptr<I2cDevice> device;
    int selection_errno = 0;
    int transfer_errno = 0;
  };

  struct Message {
    std::uint8_t address = 0;
    bool is_read = false;
    std::size_t length = 0;
    std::string bytes;  // of a write
  };

  DeviceResult Select(std::uint64_t address) const;
  DeviceResult Transfer(std::uint8_t address, bool is_read, std::string& bytes, std::size_t count);
  // Runs messages back to back, so that no other program's transfer comes between them. Stops at the first
  // one that fails. Gives their number, and the bytes of the reads.
  DeviceResult Transfer(const std::vector<Message>& messages, std::string& read);
  DeviceResult TransferLocked(std::uint8_t address, bool is_read, std::string& bytes, std::size_t count);

  mutable std::mutex mutex_;
  std::array<Slot, 256> slots_;
  std::deque<I2cTransfer> transfers_;
};

}  // namespace rolu_sim
