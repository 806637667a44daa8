#pragma once

#include <string>

#include "simulator/devices/board_root.h"

namespace rolu_sim {

// The board's wireless interface wlan0, and the `ifconfig` in the board's command directory that shows it and
// switches it on and off. While the interface is up, a file in the board root says so.
class WirelessInterface {
 public:
  // Throws std::system_error when the command cannot be made.
  explicit WirelessInterface(const BoardRoot& root);

  bool IsUp() const;
  void Set(bool up) const;

 private:
  std::string state_path_;
};

}  // namespace rolu_sim
