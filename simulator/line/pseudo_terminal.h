#pragma once

#include <string>

#include "simulator/system/unique_fd.h"

namespace rolu_sim {

// A pseudo-terminal whose device is in raw mode. No descriptor of the device is held here, so a master
// that is hung up says that no program has the device open; programs may open it again.
class PseudoTerminal {
 public:
  // Throws std::system_error.
  PseudoTerminal();

  int master() const { return master_.get(); }  // -1 when it is closed
  const std::string& device_path() const { return device_path_; }

  // Readable when bytes have come, when the last program has closed the device, and, where room is
  // wanted, when there is some. TakeChanges first, then look: a change is told once. A hung-up master
  // polled by itself would tell so all the time.
  int changes() const { return changes_.get(); }
  void TakeChanges() const;
  void WantRoom(bool wanted);

  bool IsOpenByHost() const;

  // Drops the bytes that no program has read.
  void DiscardUnreadBytes();

  // Nothing is received or sent any more, and no program has it open.
  void Close() { master_.Reset(); }

  // A closed one becomes a new pseudo-terminal, which may have another path. Throws std::system_error.
  void Reopen();

 private:
  void WatchMaster(int operation) const;

  UniqueFd master_;
  UniqueFd changes_;
  bool room_wanted_ = false;
  std::string device_path_;
};

}  // namespace rolu_sim
