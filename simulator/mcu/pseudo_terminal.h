#pragma once

#include <string>

#include "simulator/unique_fd.h"

namespace rolu_sim {

// A pseudo-terminal whose device is in raw mode, and a watch on who opens the device. No
// descriptor of the device is held here, so a master that is hung up says that no program has the
// device open; programs may open it again.
class PseudoTerminal {
 public:
  // Throws std::system_error.
  PseudoTerminal();

  int master() const { return master_.get(); }
  // Readable when a program has opened or closed the device.
  int watch() const { return watch_.get(); }
  const std::string& device_path() const { return device_path_; }

  bool IsOpenByHost() const;

  // Takes what the watch has seen. True when, at some moment since the last call, the last program
  // closed the device, whether or not another one has opened it since.
  bool TakeHostClose();

  // Drops the bytes that no program has read.
  void DiscardUnreadBytes();

  // Nothing is received or sent any more, and no program has it open.
  void Close();

 private:
  UniqueFd OpenDevice() const;
  bool WatchDevice();

  UniqueFd master_;
  UniqueFd watch_;
  int watched_ = -1;
  int openers_ = 0;
  std::string device_path_;
};

}  // namespace rolu_sim
