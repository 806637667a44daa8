#pragma once

#include <string>

#include "simulator/unique_fd.h"

namespace rolu_sim {

// The directory of a served board, which this process alone holds until this is destroyed. It removes
// what a killed board left there and refuses a directory that holds anything else. At the end it removes the
// directory if it made it and it is empty.
class ServedDirectory {
 public:
  // Throws UsageError, or std::system_error.
  explicit ServedDirectory(std::string path);
  ~ServedDirectory();
  ServedDirectory(const ServedDirectory&) = delete;
  ServedDirectory& operator=(const ServedDirectory&) = delete;

  const std::string& path() const { return path_; }

 private:
  void MakeAndHold();

  const std::string path_;
  bool is_made_here_ = false;
  UniqueFd held_;  // with a lock, which ends with the process that has it, however that ends
};

// Waits for the end of a board that was asked to go down. Made before it is asked: its directory may be
// gone soon after.
class BoardEnd {
 public:
  explicit BoardEnd(const std::string& board_directory);
  void Wait() const;

 private:
  UniqueFd directory_;
};

}  // namespace rolu_sim
