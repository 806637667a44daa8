#pragma once

#include <stdexcept>
#include <string>

#include "cli/exit_status.h"

namespace rolu {

// What ends a command before its work is done. main prints the text and exits with the status.
class CommandError : public std::runtime_error {
 public:
  CommandError(ExitStatus status, const std::string& text) : std::runtime_error(text), status_(status) {}
  ExitStatus status() const { return status_; }

 private:
  ExitStatus status_;
};

}  // namespace rolu
