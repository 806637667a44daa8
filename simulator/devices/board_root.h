#pragma once

#include <sys/types.h>

#include <cstddef>
#include <map>
#include <string>

namespace rolu_sim {

// The directory that holds what the board shows: proc/vpm_serial (a link to the MCU's port), bin/
// (commands that stand in for the system's), shown/ (the board's directories) and sockets. A private one is
// removed with everything in it on destruction, by the process that made it and no other; in a named one only
// the board's parts are.
class BoardRoot {
 public:
  // The longest path of a directory in which the sockets' paths fit the system's limit.
  static constexpr std::size_t kMaxPathLength = 90;

  // Private when `directory` is empty, else one that is there. Throws std::system_error when it cannot
  // be made, or when another board's parts are in it.
  explicit BoardRoot(const std::string& directory = {});
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

  // Shows a directory with these entries and no others. False when the system refuses it.
  using Entries = std::map<std::string, bool>;  // by name: whether it is a directory
  bool ShowDirectory(const std::string& path, const Entries& entries) const;

  // What a board has put into a directory: whether nothing else is there, and its removal, which leaves
  // all else as it is.
  static bool HoldsOnlyParts(const std::string& directory);
  static void RemoveParts(const std::string& directory);

 private:
  std::string path_;
  const bool is_private_;
  pid_t owner_;
};

}  // namespace rolu_sim
