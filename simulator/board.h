#pragma once

#include <functional>
#include <memory>
#include <string>

#include "simulator/devices/board_paths.h"
#include "simulator/devices/board_root.h"
#include "simulator/devices/device.h"
#include "simulator/devices/device_server.h"
#include "simulator/devices/gpio.h"
#include "simulator/devices/i2c_bus.h"
#include "simulator/devices/port_holders.h"
#include "simulator/devices/wireless_interface.h"
#include "simulator/line/mcu_serial.h"

namespace rolu_sim {

struct BoardOptions {
  McuSerialOptions serial;
  KernelIdentity kernel;
  std::string root_directory{};  // an existing directory; empty: a private one
  // Hears a sentence when two programs have the serial port open; on a thread of the board. May be empty.
  std::function<void(const std::string& words)> port_conflict_listener{};
};

// A whole simulated board. A test program holds one in its own process:
//
//   int main(int argc, char** argv) {
//     rolu_sim::EnsurePreloaded(argc, argv);      // preloaded.h, before anything else
//     testing::InitGoogleTest(&argc, argv);
//     return RUN_ALL_TESTS();
//   }
//
//   rolu_sim::Board board;
//   board.AttachThisProcess();
//   board.mcu().Script(CommandMatch::Exactly("MCVG"), Reply::Line("02EB"));
//   ... call the library: it opens its usual paths and meets this board ...
//   board.mcu().WaitForCommand("MCVG", 2s);
//
// Boards are independent: those of different processes, and those that one process makes one after another.
// The constructor throws std::system_error when a system call fails.
class Board {
 public:
  // The address of a device with 256 registers on the I2C bus.
  static constexpr std::uint8_t kRegisterDeviceAddress = 0x50;

  explicit Board(BoardOptions options = {});
  ~Board();
  Board(const Board&) = delete;
  Board& operator=(const Board&) = delete;

  McuSerial& mcu() { return mcu_; }
  DeviceServer& devices() { return devices_; }
  I2cBus& i2c() { return *i2c_; }
  ResetController& reset_controller() { return *reset_controller_; }
  I2cRegisterDevice& register_device() { return *register_device_; }
  Backlight& backlight() { return *backlight_; }
  TextAttribute& light_sensor() { return *light_sensor_; }
  Gpio& gpio() { return gpio_; }
  WirelessInterface& wireless() { return wireless_; }
  const BoardRoot& root() const { return root_; }

  // From now until the board is destroyed, the preloaded object of this process and of its children uses this
  // board, and the board's commands come first in PATH. This sets environment variables: call it while no
  // other thread reads the environment or opens the board's paths.
  void AttachThisProcess();

  // Removes the serial device (a new open fails with ENOENT; open descriptors keep working) or restores it.
  void RemoveSerialDevice();
  void RestoreSerialDevice();

  // Creates a new port after mcu().HangUp().
  void ReplugSerialPort();

 private:
  McuSerialOptions WithOwnListener(McuSerialOptions options);
  void Hear(const McuEvent& event);
  void FollowOpening(pid_t process);

  BoardRoot root_;
  const std::function<void(const McuEvent&)> event_listener_;
  bool ends_ = false;  // the MCU's lock guards it
  McuSerial mcu_;
  std::shared_ptr<ResetController> reset_controller_;
  std::shared_ptr<I2cRegisterDevice> register_device_;
  std::shared_ptr<I2cBus> i2c_;
  std::shared_ptr<Backlight> backlight_;
  std::shared_ptr<TextAttribute> light_sensor_;
  WirelessInterface wireless_;
  const std::function<void(const std::string&)> port_conflict_listener_;
  PortHolders port_holders_;  // only the device server's thread uses it
  DeviceServer devices_;
  Gpio gpio_;
};

}  // namespace rolu_sim
