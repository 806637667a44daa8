#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "simulator/board.h"
#include "simulator/json.h"

namespace rolu_sim {

// The names of the errors that a device can be made to answer.
std::vector<std::string> ErrnoNames();

// The faults of a board's serial port and devices: makes and ends them, and knows those there are. Files
// have their short names. For verbs and readings, which hold the desk locked.
class BoardFaults {
 public:
  explicit BoardFaults(Board& board) : board_(board) {}

  void HangUp();
  void RemoveFile(const std::string& file);

  // `operation` is open, read, write or ioctl, `error` one of ErrnoNames. Throws UsageError for the serial
  // port.
  void FailFile(const std::string& file, const std::string& operation, const std::string& error);

  // `stage` is select or transfer.
  void RefuseAddress(std::uint8_t address, const std::string& stage, const std::string& error);

  // Brings the serial port back. One that is there stays untouched: a program may be about to open it.
  void Replug();
  void EndAll();

  // An object for each: its verb without "fault-", and the values of that verb's parameters.
  std::vector<Json> Present() const;

 private:
  void SetFileFaults(const std::string& file);
  void Refuse(std::uint8_t address, const std::string& stage, int error);

  Board& board_;
  std::string port_;  // hang-up, missing, or nothing
  // Errors by file and operation, where a file that is gone has the operation "missing", and by address and
  // stage.
  std::map<std::pair<std::string, std::string>, std::string> files_;
  std::map<std::pair<std::uint8_t, std::string>, std::string> addresses_;
};

}  // namespace rolu_sim
