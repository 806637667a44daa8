#pragma once

#include <sys/types.h>

#include <cstddef>
#include <map>
#include <string>

namespace rolu_sim {

// The directory that holds what the board shows: proc/vpm_serial (a link to the MCU's port), bin/ (commands
// that replace those of the system), shown/ (the board's directories) and sockets. The destructor removes a
// private directory with everything in it, but only in the process that made it. From a named directory it
// removes the board's parts only.
class BoardRoot {
 public:
  // The longest directory path for which the sockets' paths stay within the system's limit.
  static constexpr std::size_t kMaxPathLength = 90;

  // Makes a private directory when `directory` is empty, else uses that existing one. Throws
  // std::system_error when it cannot make the directory, or when the directory holds another board's parts.
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

  // Makes a shown directory hold exactly these entries. False when the system refuses it.
  using Entries = std::map<std::string, bool>;  // by name: whether the entry is a directory
  bool ShowDirectory(const std::string& path, const Entries& entries) const;

  // Whether a directory holds nothing but a board's parts, and the removal of these parts, which leaves
  // everything else alone.
  static bool HoldsOnlyParts(const std::string& directory);
  static void RemoveParts(const std::string& directory);

 private:
  std::string path_;
  const bool is_private_;
  pid_t owner_;
};

}  // namespace rolu_sim
