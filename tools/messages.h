#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

#include "tools/exit_status.h"

namespace rolu {

// What ends a command before its work is done. main prints the text and exits with the status.
class CommandError : public std::runtime_error {
 public:
  CommandError(ExitStatus status, const std::string& text) : std::runtime_error(text), status_(status) {}
  ExitStatus status() const { return status_; }

 private:
  ExitStatus status_;
};

// Messages for people, on standard error: "rolu: TEXT", or for a problem "rolu: TEXT" in red on a
// terminal.
void Say(std::string_view text);
void SayProblem(std::string_view text);

// Whether a stream (1 or 2) may carry colour: a terminal that can, and no NO_COLOR.
bool MayColour(int fd);

// The system's words for an errno.
std::string ErrnoText(int error);

}  // namespace rolu
