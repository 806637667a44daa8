#pragma once

#include <string>

#include "simulator/system/unique_fd.h"

namespace rolu_bench {

// The least that a program must do to ask the MCU: write, select, read until the carriage return.
class SerialClient {
 public:
  // Throws std::system_error.
  explicit SerialClient(const std::string& device_path);

  // False when no answer came within a second.
  bool AskWatchdogTime() const;

 private:
  rolu_sim::UniqueFd port_;
};

}  // namespace rolu_bench
