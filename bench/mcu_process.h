#pragma once

#include <sys/types.h>

#include <string>

#include "simulator/devices/board_root.h"

namespace rolu_bench {

// Message lines that the MCU sends before its answer to the watchdog's trigger.
inline constexpr int kMessagesBeforeTriggerAnswer = 20;

// The watchdog time that the MCU answers, in the MCU's own unit.
inline constexpr unsigned short kWatchdogTime = 0x003C;

// As a Modbus RTU device it has this address, and the watchdog time in every register.
inline constexpr int kModbusUnit = 1;

// The MCU at the far end of a pseudo-terminal, in a process of its own that is pinned to no
// processor. It knows three commands and the Modbus request for one register, answers each at once and does
// nothing else. Any other work would count as time of the wire in each figure: the simulated board's MCU
// keeps a log and follows who opens the port. Construct it while no other thread runs.
class McuProcess {
 public:
  // Throws std::system_error.
  McuProcess();
  ~McuProcess();
  McuProcess(const McuProcess&) = delete;
  McuProcess& operator=(const McuProcess&) = delete;

  const std::string& device_path() const { return device_path_; }

  // Makes this port the board's.
  void PlugInto(const rolu_sim::BoardRoot& root) const { root.LinkSerialPort(device_path_); }

  // Ends the process and with it the port: open descriptors read end of file. True when the device
  // is gone.
  bool HangUp();

 private:
  std::string device_path_;
  pid_t process_ = -1;
};

}  // namespace rolu_bench
