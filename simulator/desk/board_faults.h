#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "simulator/board.h"
#include "simulator/desk/parameter.h"

namespace rolu_sim {

// Short names of the board's device files: "serial", "i2c", "gpio37-value", ...
std::vector<std::string> BoardFileNames();

// The operations that can be made to fail: open, read, write and ioctl.
using FileOperation = int DeviceFaults::*;
Choices FileOperations();

// The errors that a device can be made to return. Each value is an int.
Choices DeviceErrors();

// The faults of a board's serial port and devices: sets them, ends them and lists them. Files go by their
// short names. Verbs and readings use it while they hold the desk's lock.
class BoardFaults {
 public:
  explicit BoardFaults(Board& board) : board_(board) {}

  void HangUp();
  void RemoveFile(const std::string& file);

  // Throws UsageError for the serial port.
  void FailFile(const std::string& file, FileOperation operation, int error);

  // `stage` is select or transfer.
  void RefuseAddress(std::uint8_t address, const std::string& stage, int error);

  // Brings the serial port back. A port that is present stays untouched, because a program may be about to
  // open it.
  void Replug();
  void EndAll();

  // One object for each fault: the fault's verb without "fault-", and the values of that verb's parameters.
  std::vector<Json> Present() const;

 private:
  void Refuse(std::uint8_t address, const std::string& stage, int error);

  Board& board_;
  std::string port_;  // kHangUp or kMissing; empty: no fault
  std::map<std::string, DeviceFaults> files_;
  std::map<std::pair<std::uint8_t, std::string>, int> addresses_;  // errors by address and stage
};

}  // namespace rolu_sim
