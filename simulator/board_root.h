#pragma once

#include <sys/types.h>

#include <string>

namespace rolu_sim {

// The private directory that holds what the board shows: proc/vpm_serial (a link to the MCU's
// port), bin/ (commands that stand in for the system's) and the device server's socket. Removed
// with everything in it on destruction, by the process that made it and no other. Throws
// std::system_error when it cannot be made.
class BoardRoot {
 public:
  BoardRoot();
  ~BoardRoot();
  BoardRoot(const BoardRoot&) = delete;
  BoardRoot& operator=(const BoardRoot&) = delete;

  const std::string& path() const { return path_; }
  std::string SerialLinkPath() const;
  std::string CommandDirectory() const;
  std::string DeviceSocketPath() const;

  // Replaces or removes the link to the MCU's port.
  void LinkSerialPort(const std::string& device_path) const;
  void UnlinkSerialPort() const;

 private:
  std::string path_;
  pid_t owner_;
};

}  // namespace rolu_sim
