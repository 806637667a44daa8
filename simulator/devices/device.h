#pragma once

#include <sys/stat.h>

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace rolu_sim {

// Results are those of a driver: 0 or a count, or a negative errno.
using DeviceResult = std::int32_t;

struct OpenFlags {
  bool read = false;
  bool write = false;
  bool truncate = false;
  bool append = false;
};

// One open descriptor of a device; destroyed when the descriptor is closed.
class OpenDevice {
 public:
  virtual ~OpenDevice() = default;
  // Puts at most `capacity` bytes into `bytes` (empty at the call) and gives their count. `offset` is
  // where in its text an attribute is read.
  virtual DeviceResult Read(std::string& bytes, std::size_t capacity, std::uint64_t offset);
  virtual DeviceResult Write(std::string_view bytes);
  // `whence` and `offset` are those of lseek; moves the position unless it fails.
  virtual DeviceResult Seek(std::uint32_t whence, std::int64_t offset, std::uint64_t& position);
  // Requests take a number as their argument; none of the board's take a pointer.
  virtual DeviceResult Ioctl(std::uint32_t request, std::uint64_t argument);
};

// A device node. The server calls devices from its thread only, one call at a time; what a device
// shows to its owner it guards itself.
class Device {
 public:
  virtual ~Device() = default;
  // What stat tells: kind and permissions.
  virtual std::uint32_t Mode() const { return S_IFREG | 0644; }
  virtual DeviceResult Open(const OpenFlags& flags, std::unique_ptr<OpenDevice>& opened) = 0;
};

}  // namespace rolu_sim
