#pragma once

#include <string>

#include "simulator/unique_fd.h"

namespace rolu_sim {

// A pseudo-terminal whose device is in raw mode, and a watch on who opens it. One descriptor of the
// device is held here, so that the master does not see a hang-up when the last program closes it;
// the watch does not count that one.
class PseudoTerminal {
 public:
  // Throws std::system_error.
  PseudoTerminal();

  int master() const { return master_.get(); }
  int watch() const { return watch_.get(); }
  const std::string& device_path() const { return device_path_; }

  // Takes what the watch has seen since the last call: how many opens and closes by programs.
  struct HostActivity {
    int opens = 0;
    int closes = 0;
  };
  HostActivity TakeHostActivity() const;

  // Drops the bytes that a program has not read.
  void DiscardUnreadBytes() const;

  void Close();

 private:
  UniqueFd master_;
  UniqueFd device_;
  UniqueFd watch_;
  std::string device_path_;
};

}  // namespace rolu_sim
