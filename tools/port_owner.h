#pragma once

#include <string>

namespace rolu {

// The MCU's port, as the library opens it.
inline constexpr char kMcuPort[] = "/proc/vpm_serial";

struct PortSearch {
  std::string owner;  // "process 1234 (vehicle-app --verbose)"; empty when there is none
  // Processes whose descriptors this one may not see, as those of other users.
  int hidden_processes = 0;
};

// Looks for another process that has the MCU's port open. When the port is a pseudo-terminal, the
// process at its other end is not an owner: it is the MCU.
PortSearch FindPortOwner();

// Another descriptor for this process's own open port, which nobody inherits; -1 when it is not open. It
// is for poll, which tells when the port hangs up.
int DuplicateOwnPort();

}  // namespace rolu
