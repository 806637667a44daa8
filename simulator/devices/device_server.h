#pragma once

#include <sys/types.h>

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/devices/board_root.h"
#include "simulator/devices/device.h"
#include "simulator/devices/device_protocol.h"
#include "simulator/system/socket_server.h"

namespace rolu_sim {

// What uname reports on the board.
struct KernelIdentity {
  std::string machine = "armv7l";
  std::string release = "3.2.0";
  std::string version = "#1 SMP PREEMPT Mon Jul 14 10:00:00 UTC 2014";
};

// Faults of one node; zero means no fault. The node answers each errno instead of doing the device's work.
struct DeviceFaults {
  bool missing = false;  // the node does not exist: ENOENT
  int open_errno = 0;
  int read_errno = 0;
  int write_errno = 0;
  int ioctl_errno = 0;
  std::optional<std::size_t> max_read_bytes;  // short reads
};

enum class DeviceOperation { kOpen, kRead, kWrite, kIoctl, kClose };

// One call of a program: the operation, the node and the result. `bytes` are the bytes written or read;
// `request` and `argument` belong to an ioctl.
struct DeviceAccess {
  std::chrono::steady_clock::time_point time;
  std::string path;
  DeviceOperation operation = DeviceOperation::kOpen;
  std::string bytes;
  std::uint32_t request = 0;
  std::uint64_t argument = 0;
  DeviceResult result = 0;
};

// Answers the preloaded object's calls on the board's device nodes. Each call is a synchronous message over a
// unix socket (device_protocol.h). An open of a missing node fails with ENOENT. Any thread may call any
// member.
class DeviceServer {
 public:
  static constexpr std::size_t kLogCapacity = 65536;

  // Listens in the board root from the start, and shows the board's directories there. It does not serve the
  // serial port, but calls `on_serial_open` on its thread each time before a process opens that port.
  using SerialOpenHandler = std::function<void(pid_t process)>;
  DeviceServer(const BoardRoot& root, KernelIdentity kernel, SerialOpenHandler on_serial_open);

  // Adds or replaces the node at `path`, which is a path of board_paths.h, or takes it away.
  void AddNode(const std::string& path, std::shared_ptr<Device> device);
  void RemoveNode(const std::string& path);

  // While the computer is off, each call fails with ENODEV.
  void SetPower(bool on) { is_on_ = on; }

  // The faults of a path from now on; a default DeviceFaults ends them.
  void SetFaults(const std::string& path, const DeviceFaults& faults);

  // The calls of programs on a node (on all nodes, for an empty path), oldest first; the newest kLogCapacity
  // are kept. A call is in the log before it returns to the program.
  std::vector<DeviceAccess> Accesses(std::string_view path = {}) const;
  // The bytes of each write to `path` that was not refused.
  std::vector<std::string> Writes(std::string_view path) const;
  void ClearAccesses();

  // Whether any program has used a path of the board, be it the serial port.
  bool WasUsed() const { return was_used_; }

  // How many descriptors are open on `path` now.
  std::size_t OpenCount(const std::string& path) const;

 private:
  // What the server knows of a path. A missing node has no device.
  struct Node {
    std::shared_ptr<Device> device;
    std::uint64_t inode = 0;
    DeviceFaults faults;
    std::size_t open_count = 0;

    bool IsThere() const { return device != nullptr && !faults.missing; }
    void Describe(DeviceMessage& answer) const;
  };
  class Connection;

  bool Serve(Connection& caller);
  // Handles what programs did to their descriptors without the preloaded object: bytes that they wrote, and
  // closes.
  void ServeDescriptors();
  DeviceMessage Answer(Connection& caller, const DeviceMessage& request, const std::string& payload,
                       std::string& answer_payload);
  DeviceMessage AnswerFor(Connection& descriptor, const DeviceMessage& request, const std::string& payload,
                          std::string& answer_payload);
  DeviceResult Open(Connection& caller, const DeviceMessage& request, const std::string& path);
  DeviceResult Read(Connection& descriptor, const DeviceMessage& request, std::string& bytes);
  DeviceResult Write(Connection& descriptor, const std::string& bytes, std::uint64_t offset);
  DeviceResult Ioctl(Connection& descriptor, std::uint32_t request, std::uint64_t argument);
  DeviceResult Exchange(Connection& descriptor, std::uint32_t request, const std::string& sent,
                        std::string& answer);
  DeviceResult Show(const std::string& path) const;

  BoardRoot::Entries EntriesOf(const std::string& directory) const;
  Node NodeAt(const std::string& path) const;
  void Record(const std::string& path, DeviceOperation operation, DeviceResult result,
              const std::string& bytes = {}, std::uint32_t request = 0, std::uint64_t argument = 0);

  const BoardRoot& root_;
  const KernelIdentity kernel_;
  const SerialOpenHandler on_serial_open_;

  std::atomic<bool> was_used_{false};

  mutable std::mutex mutex_;
  std::map<std::string, Node> nodes_;
  std::uint64_t last_inode_ = 0;
  std::atomic<bool> is_on_{true};
  std::deque<DeviceAccess> accesses_;

  std::map<std::uint64_t, Connection*> descriptors_;  // by id; only the server's thread uses it
  SocketServer sockets_;
};

}  // namespace rolu_sim
