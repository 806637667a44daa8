#include "simulator/devices/device_server.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/uio.h>
#include <sys/utsname.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <iterator>
#include <utility>

namespace rolu_sim {
namespace {

// The bytes of a utsname.
std::string NamesOf(const KernelIdentity& kernel) {
  utsname names{};
  kernel.machine.copy(names.machine, sizeof names.machine - 1);
  kernel.release.copy(names.release, sizeof names.release - 1);
  kernel.version.copy(names.version, sizeof names.version - 1);
  return {reinterpret_cast<const char*>(&names), sizeof names};
}

// The process that has connected the socket.
pid_t PeerOf(int socket) {
  ucred peer{};
  socklen_t size = sizeof peer;
  getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &peer, &size);
  return peer.pid;
}

}  // namespace

// The connection of one request. After a successful open it stands for the program's descriptor and all
// copies of it. The socket hangs up when the last copy is closed.
class DeviceServer::Connection : public SocketServer::Connection {
 public:
  Connection(DeviceServer& server, UniqueFd socket)
      : SocketServer::Connection(std::move(socket)), server_(server) {}

  bool Serve(short /*events*/) override { return server_.Serve(*this); }

  std::string path;
  Node node;  // outlives the open device
  OpenFlags flags;
  std::unique_ptr<OpenDevice> device;
  std::uint64_t position = 0;

 private:
  DeviceServer& server_;
};

void DeviceServer::Node::Describe(DeviceMessage& answer) const {
  answer.request = device->Mode();
  answer.descriptor = inode;
}

DeviceServer::DeviceServer(const BoardRoot& root, KernelIdentity kernel, SerialOpenHandler on_serial_open)
    : root_(root),
      kernel_(std::move(kernel)),
      on_serial_open_(std::move(on_serial_open)),
      sockets_(root.DeviceSocketPath(), SOCK_SEQPACKET,
               [this](UniqueFd socket) { return std::make_unique<Connection>(*this, std::move(socket)); }) {}

void DeviceServer::AddNode(const std::string& path, std::shared_ptr<Device> device) {
  const std::lock_guard<std::mutex> lock(mutex_);
  Node& node = nodes_[path];
  node.device = std::move(device);
  node.inode = ++last_inode_;
}

void DeviceServer::RemoveNode(const std::string& path) {
  const std::lock_guard<std::mutex> lock(mutex_);
  nodes_[path].device = nullptr;
}

void DeviceServer::SetFaults(const std::string& path, const DeviceFaults& faults) {
  const std::lock_guard<std::mutex> lock(mutex_);
  nodes_[path].faults = faults;
}

std::vector<DeviceAccess> DeviceServer::Accesses(std::string_view path) const {
  const std::lock_guard<std::mutex> lock(mutex_);
  std::vector<DeviceAccess> found;
  std::copy_if(accesses_.begin(), accesses_.end(), std::back_inserter(found),
               [&](const DeviceAccess& access) { return path.empty() || access.path == path; });
  return found;
}

std::vector<std::string> DeviceServer::Writes(std::string_view path) const {
  std::vector<std::string> written;
  for (DeviceAccess& access : Accesses(path)) {
    if (access.operation == DeviceOperation::kWrite && access.result >= 0)
      written.push_back(std::move(access.bytes));
  }
  return written;
}

void DeviceServer::ClearAccesses() {
  const std::lock_guard<std::mutex> lock(mutex_);
  accesses_.clear();
}

std::size_t DeviceServer::OpenCount(const std::string& path) const {
  return NodeAt(path).open_count;
}

void DeviceServer::ServeDescriptors() {
  std::string bytes;
  for (auto next = descriptors_.begin(); next != descriptors_.end();) {
    const auto current = next++;
    Connection& descriptor = *current->second;
    ssize_t received = 0;
    do {
      bytes.resize(kMaxPayload);
      received = recv(descriptor.socket(), bytes.data(), bytes.size(), 0);
      if (received <= 0) break;
      bytes.resize(static_cast<std::size_t>(received));
      Write(descriptor, bytes, kAtPosition);
    } while (true);
    // A write of no bytes reads like the end of the connection: only a hang-up tells that it is the end.
    pollfd hang_up{descriptor.socket(), 0, 0};
    if (received == 0 && poll(&hang_up, 1, 0) == 1) {
      descriptor.device.reset();
      descriptors_.erase(current);
      {
        const std::lock_guard<std::mutex> lock(mutex_);
        --nodes_[descriptor.path].open_count;
      }
      Record(descriptor.path, DeviceOperation::kClose, 0);
    }
  }
}

bool DeviceServer::Serve(Connection& caller) {
  if (caller.device != nullptr) {
    ServeDescriptors();
    return true;
  }
  DeviceMessage request{};
  std::string payload(kMaxExchange, '\0');
  std::array<iovec, 2> parts{{{&request, sizeof request}, {payload.data(), payload.size()}}};
  msghdr message{};
  message.msg_iov = parts.data();
  message.msg_iovlen = parts.size();
  const ssize_t received = recvmsg(caller.socket(), &message, 0);
  if (received < 0 && (errno == EAGAIN || errno == EINTR)) return true;
  if (received < static_cast<ssize_t>(sizeof request)) return false;
  payload.resize(static_cast<std::size_t>(received) - sizeof request);

  ServeDescriptors();
  std::string answer_payload;
  DeviceMessage answer = Answer(caller, request, payload, answer_payload);
  parts = {{{&answer, sizeof answer}, {answer_payload.data(), answer_payload.size()}}};
  message = {};
  message.msg_iov = parts.data();
  message.msg_iovlen = parts.size();
  // The program waits for this answer and has nothing else in its buffer, so this call does not block.
  sendmsg(caller.socket(), &message, MSG_NOSIGNAL);
  if (caller.device == nullptr) return false;
  shutdown(caller.socket(), SHUT_WR);
  return true;
}

DeviceMessage DeviceServer::Answer(Connection& caller, const DeviceMessage& request,
                                   const std::string& payload, std::string& answer_payload) {
  DeviceMessage answer{};
  was_used_ = was_used_ ||
              (request.operation != DeviceRequest::kUname && request.operation != DeviceRequest::kSettle);
  answer.operation = request.operation;
  if (!is_on_) {
    answer.result = -ENODEV;
    return answer;
  }
  switch (request.operation) {
    case DeviceRequest::kOpen:
      answer.result = Open(caller, request, payload);
      break;
    case DeviceRequest::kSettle:
      break;
    case DeviceRequest::kStat:
      if (const Node node = NodeAt(payload); node.IsThere()) {
        node.Describe(answer);
      } else {
        answer.result = -ENOENT;
      }
      break;
    case DeviceRequest::kShow:
      answer.result = Show(payload);
      break;
    case DeviceRequest::kSerialOpens:
      on_serial_open_(PeerOf(caller.socket()));
      break;
    case DeviceRequest::kUname:
      answer_payload = NamesOf(kernel_);
      break;
    default:
      if (const auto found = descriptors_.find(request.descriptor); found != descriptors_.end()) {
        answer = AnswerFor(*found->second, request, payload, answer_payload);
      } else {
        answer.result = -EIO;  // the descriptor comes from a board that is gone
      }
  }
  answer.operation = request.operation;  // AnswerFor gives another message
  answer.length = static_cast<std::uint32_t>(answer_payload.size());
  return answer;
}

DeviceMessage DeviceServer::AnswerFor(Connection& descriptor, const DeviceMessage& request,
                                      const std::string& payload, std::string& answer_payload) {
  DeviceMessage answer{};
  switch (request.operation) {
    case DeviceRequest::kRead:
      answer.result = Read(descriptor, request, answer_payload);
      break;
    case DeviceRequest::kWrite:
      answer.result = Write(descriptor, payload, request.argument);
      break;
    case DeviceRequest::kSeek:
      answer.result = descriptor.device->Seek(request.request, static_cast<std::int64_t>(request.argument),
                                              descriptor.position);
      answer.argument = descriptor.position;
      break;
    case DeviceRequest::kIoctl:
      answer.result = Ioctl(descriptor, request.request, request.argument);
      break;
    case DeviceRequest::kExchange:
      answer.result = Exchange(descriptor, request.request, payload, answer_payload);
      break;
    case DeviceRequest::kStatDescriptor:
      descriptor.node.Describe(answer);
      break;
    default:
      answer.result = -EINVAL;
  }
  return answer;
}

DeviceResult DeviceServer::Open(Connection& caller, const DeviceMessage& request, const std::string& path) {
  const Node node = NodeAt(path);
  const OpenFlags flags = {request.request != O_WRONLY, request.request != O_RDONLY};
  DeviceResult result = 0;
  if (!node.IsThere()) {
    result = -ENOENT;
  } else if (node.faults.open_errno != 0) {
    result = -node.faults.open_errno;
  } else {
    result = node.device->Open(flags, caller.device);
  }
  if (result == 0) {
    caller.path = path;
    caller.node = node;
    caller.flags = flags;
    descriptors_[request.descriptor] = &caller;
    const std::lock_guard<std::mutex> lock(mutex_);
    ++nodes_[path].open_count;
  }
  Record(path, DeviceOperation::kOpen, result);
  return result;
}

DeviceResult DeviceServer::Read(Connection& descriptor, const DeviceMessage& request, std::string& bytes) {
  if (!descriptor.flags.read) return -EBADF;
  const DeviceFaults faults = NodeAt(descriptor.path).faults;
  const std::size_t capacity =
      std::min({std::size_t{request.length}, kMaxPayload, faults.max_read_bytes.value_or(kMaxPayload)});
  const bool at_position = request.argument == kAtPosition;
  const std::uint64_t offset = at_position ? descriptor.position : request.argument;
  const DeviceResult result =
      faults.read_errno != 0 ? -faults.read_errno : descriptor.device->Read(bytes, capacity, offset);
  if (result < 0) bytes.clear();
  if (result > 0 && at_position) descriptor.position += static_cast<std::uint64_t>(result);
  Record(descriptor.path, DeviceOperation::kRead, result, bytes);
  return result;
}

DeviceResult DeviceServer::Write(Connection& descriptor, const std::string& bytes, std::uint64_t offset) {
  if (!descriptor.flags.write) return -EBADF;
  const DeviceFaults faults = NodeAt(descriptor.path).faults;
  const DeviceResult result = faults.write_errno != 0 ? -faults.write_errno : descriptor.device->Write(bytes);
  if (result > 0 && offset == kAtPosition) descriptor.position += static_cast<std::uint64_t>(result);
  Record(descriptor.path, DeviceOperation::kWrite, result, bytes);
  return result;
}

DeviceResult DeviceServer::Ioctl(Connection& descriptor, std::uint32_t request, std::uint64_t argument) {
  const DeviceFaults faults = NodeAt(descriptor.path).faults;
  const DeviceResult result =
      faults.ioctl_errno != 0 ? -faults.ioctl_errno : descriptor.device->Ioctl(request, argument);
  Record(descriptor.path, DeviceOperation::kIoctl, result, {}, request, argument);
  return result;
}

DeviceResult DeviceServer::Exchange(Connection& descriptor, std::uint32_t request, const std::string& sent,
                                    std::string& answer) {
  const DeviceFaults faults = NodeAt(descriptor.path).faults;
  const DeviceResult result =
      faults.ioctl_errno != 0 ? -faults.ioctl_errno : descriptor.device->Exchange(request, sent, answer);
  if (result < 0) answer.clear();
  Record(descriptor.path, DeviceOperation::kIoctl, result, sent, request);
  return result;
}

DeviceResult DeviceServer::Show(const std::string& path) const {
  const std::string directory = NodeAt(path).IsThere() ? path.substr(0, path.rfind('/')) : path;
  const BoardRoot::Entries entries = EntriesOf(directory);
  if (entries.empty()) return -ENOENT;
  return root_.ShowDirectory(directory, entries) ? 0 : -EIO;
}

BoardRoot::Entries DeviceServer::EntriesOf(const std::string& directory) const {
  const std::string start = directory + '/';
  BoardRoot::Entries entries;
  const std::lock_guard<std::mutex> lock(mutex_);
  for (const auto& [path, node] : nodes_) {
    if (!path.starts_with(start) || !node.IsThere()) continue;
    const std::size_t end = path.find('/', start.size());
    entries[path.substr(start.size(), end - start.size())] = end != std::string::npos;
  }
  return entries;
}

DeviceServer::Node DeviceServer::NodeAt(const std::string& path) const {
  const std::lock_guard<std::mutex> lock(mutex_);
  const auto found = nodes_.find(path);
  return found == nodes_.end() ? Node{} : found->second;
}

void DeviceServer::Record(const std::string& path, DeviceOperation operation, DeviceResult result,
                          const std::string& bytes, std::uint32_t request, std::uint64_t argument) {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (accesses_.size() == kLogCapacity) accesses_.pop_front();
  accesses_.push_back({std::chrono::steady_clock::now(), path, operation, bytes, request, argument, result});
}

}  // namespace rolu_sim
