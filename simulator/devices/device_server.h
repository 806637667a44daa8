#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "simulator/board_root.h"
#include "simulator/devices/device.h"
#include "simulator/devices/device_protocol.h"
#include "simulator/unique_fd.h"
#include "simulator/wakeup_event.h"

namespace rolu_sim {

// What uname reports on the board.
struct KernelIdentity {
  std::string machine = "armv7l";
  std::string release = "3.2.0";
  std::string version = "#1 SMP PREEMPT Mon Jul 14 10:00:00 UTC 2014";
};

// Faults of one node; a zero is no fault. Each errno is answered in place of the device's work.
struct DeviceFaults {
  bool missing = false;  // the node does not exist: ENOENT
  int open_errno = 0;
  int read_errno = 0;
  int write_errno = 0;
  int ioctl_errno = 0;
  std::optional<std::size_t> max_read_bytes;  // short reads
};

enum class DeviceOperation { kOpen, kRead, kWrite, kIoctl, kClose };

// One call of a program: what it asked of which node and what it got. `bytes` are those written or
// read; `request` and `argument` those of an ioctl.
struct DeviceAccess {
  std::chrono::steady_clock::time_point time;
  std::string path;
  DeviceOperation operation = DeviceOperation::kOpen;
  std::string bytes;
  std::uint32_t request = 0;
  std::uint64_t argument = 0;
  DeviceResult result = 0;
};

// Answers the preloaded object's calls on the board's device nodes, each one as a synchronous
// message over a unix socket (device_protocol.h). A node that is not there answers ENOENT. Any thread may
// call any member.
class DeviceServer {
 public:
  static constexpr std::size_t kLogCapacity = 65536;

  // Listens in the board root from the start, and shows its directories there. Calls `on_serial_open` from
  // its thread each time before a program opens the serial port, which it does not serve itself.
  DeviceServer(const BoardRoot& root, KernelIdentity kernel, std::function<void()> on_serial_open);
  ~DeviceServer();
  DeviceServer(const DeviceServer&) = delete;
  DeviceServer& operator=(const DeviceServer&) = delete;

  // Adds or replaces the node at `path`, one of board_paths.h. Descriptors that are open on a
  // removed node keep working, as they do on Linux.
  void AddNode(const std::string& path, std::shared_ptr<Device> device);
  void RemoveNode(const std::string& path);

  // The faults of a path from now on; a default DeviceFaults ends them.
  void SetFaults(const std::string& path, const DeviceFaults& faults);

  // What programs did with a node (with any, for an empty path), oldest first; the newest
  // kLogCapacity are kept. A call is in the log before it returns to the program.
  std::vector<DeviceAccess> Accesses(std::string_view path = {}) const;
  // Bytes of each write to `path`, refused ones left out.
  std::vector<std::string> Writes(std::string_view path) const;
  void ClearAccesses();

  // Descriptors that are open on `path` now.
  std::size_t OpenCount(const std::string& path) const;

 private:
  struct Node {
    std::shared_ptr<Device> device;
    std::uint64_t inode = 0;
  };
  struct Descriptor;

  void Run();
  void WaitForWork();
  // Takes what came past the preloaded object: bytes, which are a write, and closes.
  void ServeDescriptors();
  // False when the system refuses another descriptor.
  bool AcceptCallers();
  // False while the request has not come yet.
  bool ServeCaller(UniqueFd& caller);
  DeviceMessage Answer(const DeviceMessage& request, const std::string& payload, std::string& answer_payload);
  DeviceMessage AnswerFor(Descriptor& descriptor, const DeviceMessage& request, const std::string& payload,
                          std::string& answer_payload);
  DeviceResult Open(std::uint64_t id, const std::string& path, std::uint64_t open_bits);
  DeviceResult Read(Descriptor& descriptor, const DeviceMessage& request, std::string& bytes);
  DeviceResult Write(Descriptor& descriptor, const std::string& bytes, std::uint64_t offset);
  DeviceResult Ioctl(Descriptor& descriptor, std::uint32_t request, std::uint64_t argument);
  void Close(const Descriptor& descriptor);
  // Of a descriptor, or of a path when `id` is 0.
  DeviceResult Stat(std::uint64_t id, const std::string& path, DeviceMessage& answer) const;
  DeviceResult Show(const std::string& path) const;

  bool IsThere(const std::string& path) const;
  BoardRoot::Entries EntriesOf(const std::string& directory) const;
  // A node without a device when there is none.
  Node FindNode(const std::string& path) const;
  DeviceFaults FaultsOf(const std::string& path) const;
  void Record(DeviceAccess access);

  const BoardRoot& root_;
  const KernelIdentity kernel_;
  const std::function<void()> on_serial_open_;
  UniqueFd listener_;
  WakeupEvent wakeup_;
  std::atomic<bool> stopping_{false};

  // Of the server's thread: connections whose request has not come yet, and the descriptors by their id.
  bool can_accept_ = true;
  std::list<UniqueFd> callers_;
  std::map<std::uint64_t, Descriptor> descriptors_;

  mutable std::mutex mutex_;
  std::map<std::string, Node> nodes_;
  std::uint64_t last_inode_ = 0;
  std::map<std::string, DeviceFaults> faults_;
  std::map<std::string, std::size_t> open_counts_;
  std::deque<DeviceAccess> accesses_;

  std::thread thread_;
};

}  // namespace rolu_sim
