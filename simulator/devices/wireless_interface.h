#pragma once

#include <string>

#include "simulator/devices/board_root.h"

namespace rolu_sim {

// The board's wireless interface wlan0, and the `ifconfig` in the board's command directory that
// shows it and brings it up and down. A file of the board root is there while it is up.
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
