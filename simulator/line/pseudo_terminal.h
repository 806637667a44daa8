#pragma once

#include <string>

#include "simulator/system/unique_fd.h"

namespace rolu_sim {

// A pseudo-terminal whose device is in raw mode. This object holds no descriptor of the device, so a hang-up
// of the master means that no program has the device open. Programs may open the device again.
class PseudoTerminal {
 public:
  // Throws std::system_error.
  PseudoTerminal();

  int master() const { return master_.get(); }  // -1 when it is closed
  const std::string& device_path() const { return device_path_; }

  // A descriptor to poll. It becomes readable when bytes have come, when the last program has closed the
  // device, and, after WantRoom(true), when there is room to write. It reports each change once: call
  // TakeChanges first, then look at the port. The master itself would report a hang-up without end.
  int changes() const { return changes_.get(); }
  void TakeChanges() const;
  void WantRoom(bool wanted);

  bool IsOpenByHost() const;

  // Drops the bytes that no program has read.
  void DiscardUnreadBytes();

  // Afterwards nothing is received or sent, and no program has the device open.
  void Close() { master_.Reset(); }

  // Makes a new pseudo-terminal after Close; its path may differ. Throws std::system_error.
  void Reopen();

 private:
  void WatchMaster(int operation) const;

  UniqueFd master_;
  UniqueFd changes_;
  bool room_wanted_ = false;
  std::string device_path_;
};

}  // namespace rolu_sim
