#pragma once

#include <sys/types.h>

#include <map>
#include <set>
#include <string>
#include <vector>

namespace rolu_sim {

// Knows the programs that have the serial port open: two of them take each other's answers from the MCU.
class PortHolders {
 public:
  // `process` is about to open the port, whose device is at `device_path`. Gives a sentence for each other
  // process that has it open, once for each pair while they hold the port. `is_open` says whether the port is
  // open now. If none of the known processes holds it then, this looks at all processes: a child may have
  // inherited it.
  std::vector<std::string> NoteOpening(pid_t process, const std::string& device_path, bool is_open);

  // Every process that has the device open now, but this one: "battery (4700)". Processes of other users are
  // hidden from a user who is not root.
  static std::vector<std::string> FindAll(const std::string& device_path);

 private:
  // Each process that opened the port, and the others with which it has been named.
  std::map<pid_t, std::set<pid_t>> openers_;
};

}  // namespace rolu_sim
