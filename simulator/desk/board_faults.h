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

// The errors that a device can be made to answer, an int each.
Choices DeviceErrors();

// The faults of a board's serial port and devices: makes and ends them, and knows those there are. Files
// have their short names. For verbs and readings, which hold the desk locked.
class BoardFaults {
 public:
  explicit BoardFaults(Board& board) : board_(board) {}

  void HangUp();
  void RemoveFile(const std::string& file);

  // Throws UsageError for the serial port.
  void FailFile(const std::string& file, FileOperation operation, int error);

  // `stage` is select or transfer.
  void RefuseAddress(std::uint8_t address, const std::string& stage, int error);

  // Brings the serial port back. One that is there stays untouched: a program may be about to open it.
  void Replug();
  void EndAll();

  // An object for each: its verb without "fault-", and the values of that verb's parameters.
  std::vector<Json> Present() const;

 private:
  void Refuse(std::uint8_t address, const std::string& stage, int error);

  Board& board_;
  std::string port_;  // hang-up, missing, or nothing
  std::map<std::string, DeviceFaults> files_;
  std::map<std::pair<std::uint8_t, std::string>, int> addresses_;  // errors by address and stage
};

}  // namespace rolu_sim
