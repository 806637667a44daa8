#pragma once

#include <string>

namespace rolu {

// The path of the MCU's port that the library opens.
inline constexpr char kMcuPort[] = "/proc/vpm_serial";

struct PortSearch {
  std::string owner;  // "process 1234 (vehicle-app --verbose)"; empty when there is none
  // Processes whose descriptors this process may not see, for example those of other users.
  int hidden_processes = 0;
};

// Looks for another process that has the MCU's port open. If the port is a pseudo-terminal, the process at
// its other end is the MCU, not an owner.
PortSearch FindPortOwner();

// A duplicate of this process's open descriptor of the port, which children do not inherit; -1 when the port
// is not open. A poll of it tells when the port hangs up.
int DuplicateOwnPort();

}  // namespace rolu
