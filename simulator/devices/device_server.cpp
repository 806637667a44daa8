#include "simulator/devices/device_server.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/uio.h>
#include <sys/un.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

#include "simulator/blocked_signals.h"
#include "simulator/system_error.h"

namespace rolu_sim {
namespace {

// While this process has no descriptor to spare, the listener stays readable and must rest.
constexpr int kRetryAcceptMs = 10;

OpenFlags FlagsOf(std::uint64_t bits) {
  return {(bits & kOpenRead) != 0, (bits & kOpenWrite) != 0, (bits & kOpenTruncate) != 0,
          (bits & kOpenAppend) != 0};
}

UniqueFd Listen(const std::string& path) {
  UniqueFd listener(socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path.size() >= sizeof address.sun_path) {
    errno = ENAMETOOLONG;
    ThrowErrno("listening at " + path);
  }
  path.copy(address.sun_path, path.size());
  // The generic socket address is what POSIX has in place of a base class.
  const auto* const generic = reinterpret_cast<const sockaddr*>(&address);
  if (!listener || bind(listener.get(), generic, sizeof address) != 0 ||
      listen(listener.get(), SOMAXCONN) != 0) {
    ThrowErrno("listening at " + path);
  }
  return listener;
}

}  // namespace

// One descriptor of a program, or one question about a path.
struct DeviceServer::Connection {
  UniqueFd socket;
  std::string path;
  std::shared_ptr<Device> node;  // outlives the descriptor that it opened
  std::unique_ptr<OpenDevice> device;
  OpenFlags flags;
};

DeviceServer::DeviceServer(const std::string& socket_path, KernelIdentity kernel)
    : kernel_(std::move(kernel)), listener_(Listen(socket_path)) {
  const BlockedSignals blocked;
  thread_ = std::thread([this] { Run(); });
}

DeviceServer::~DeviceServer() {
  stopping_ = true;
  wakeup_.Signal();
  thread_.join();
}

void DeviceServer::AddNode(const std::string& path, std::shared_ptr<Device> device) {
  const std::lock_guard<std::mutex> lock(mutex_);
  nodes_[path] = std::move(device);
}

void DeviceServer::RemoveNode(const std::string& path) {
  const std::lock_guard<std::mutex> lock(mutex_);
  nodes_.erase(path);
}

void DeviceServer::SetFaults(const std::string& path, const DeviceFaults& faults) {
  const std::lock_guard<std::mutex> lock(mutex_);
  faults_[path] = faults;
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
  const std::lock_guard<std::mutex> lock(mutex_);
  const auto found = open_counts_.find(path);
  return found == open_counts_.end() ? 0 : found->second;
}

void DeviceServer::Run() {
  std::vector<pollfd> sources;
  bool can_accept = true;
  while (!stopping_) {
    sources = {{wakeup_.fd(), POLLIN, 0}, {can_accept ? listener_.get() : -1, POLLIN, 0}};
    for (const Connection& connection : connections_) sources.push_back({connection.socket.get(), POLLIN, 0});
    poll(sources.data(), sources.size(), can_accept ? -1 : kRetryAcceptMs);
    wakeup_.Take();
    auto source = sources.begin() + 2;
    for (auto connection = connections_.begin(); connection != connections_.end(); ++source) {
      const bool ended = source->revents != 0 && !ServeMessage(*connection);
      connection = ended ? connections_.erase(connection) : std::next(connection);
    }
    can_accept = sources[1].revents == 0 || Accept();
  }
}

bool DeviceServer::Accept() {
  UniqueFd socket(accept4(listener_.get(), nullptr, nullptr, SOCK_CLOEXEC));
  if (!socket) return errno == EAGAIN || errno == EINTR || errno == ECONNABORTED;
  connections_.emplace_back();
  connections_.back().socket = std::move(socket);
  return true;
}

bool DeviceServer::ServeMessage(Connection& connection) {
  DeviceMessage request{};
  std::string payload(kMaxPayload, '\0');
  std::array<iovec, 2> parts{{{&request, sizeof request}, {payload.data(), payload.size()}}};
  msghdr message{};
  message.msg_iov = parts.data();
  message.msg_iovlen = parts.size();
  const ssize_t received = recvmsg(connection.socket.get(), &message, MSG_DONTWAIT);
  if (received < 0 && (errno == EAGAIN || errno == EINTR)) return true;
  if (received < static_cast<ssize_t>(sizeof request)) {
    Close(connection);
    return false;
  }
  payload.resize(static_cast<std::size_t>(received) - sizeof request);

  std::string answer_payload;
  DeviceMessage answer = Answer(connection, request, payload, answer_payload);
  parts = {{{&answer, sizeof answer}, {answer_payload.data(), answer_payload.size()}}};
  message = {};
  message.msg_iov = parts.data();
  message.msg_iovlen = parts.size();
  // The program waits for this answer and has nothing else in its buffer: it cannot block.
  return sendmsg(connection.socket.get(), &message, MSG_NOSIGNAL | MSG_DONTWAIT) > 0;
}

DeviceMessage DeviceServer::Answer(Connection& connection, const DeviceMessage& request,
                                   const std::string& payload, std::string& answer_payload) {
  DeviceMessage answer{};
  answer.operation = request.operation;
  switch (static_cast<DeviceRequest>(request.operation)) {
    case DeviceRequest::kOpen:
      answer.result = Open(connection, payload, request.argument);
      break;
    case DeviceRequest::kRead:
      answer.result = Read(connection, std::min<std::size_t>(request.length, kMaxPayload), answer_payload);
      break;
    case DeviceRequest::kWrite:
      answer.result = Write(connection, payload);
      break;
    case DeviceRequest::kIoctl:
      answer.result = Ioctl(connection, request.request, request.argument);
      break;
    case DeviceRequest::kClose:
      Close(connection);
      break;
    case DeviceRequest::kStat:
      answer.result = Stat(payload, answer);
      break;
    case DeviceRequest::kUname:
      for (const std::string& name : {kernel_.machine, kernel_.release, kernel_.version}) {
        answer_payload.append(name).push_back('\0');
      }
      break;
    default:
      answer.result = -EINVAL;
  }
  answer.length = static_cast<std::uint32_t>(answer_payload.size());
  return answer;
}

DeviceResult DeviceServer::Open(Connection& connection, const std::string& path, std::uint64_t open_bits) {
  const DeviceFaults faults = FaultsOf(path);
  const std::shared_ptr<Device> node = FindNode(path);
  DeviceResult result = 0;
  if (node == nullptr || faults.missing) {
    result = -ENOENT;
  } else if (faults.open_errno != 0) {
    result = -faults.open_errno;
  } else {
    result = node->Open(FlagsOf(open_bits), connection.device);
  }
  if (result == 0) {
    connection.path = path;
    connection.node = node;
    connection.flags = FlagsOf(open_bits);
    const std::lock_guard<std::mutex> lock(mutex_);
    ++open_counts_[path];
  }
  Record({std::chrono::steady_clock::now(), path, DeviceOperation::kOpen, {}, 0, open_bits, result});
  return result;
}

DeviceResult DeviceServer::Read(Connection& connection, std::size_t capacity, std::string& bytes) {
  if (connection.device == nullptr || !connection.flags.read) return -EBADF;
  const DeviceFaults faults = FaultsOf(connection.path);
  if (faults.max_read_bytes) capacity = std::min(capacity, *faults.max_read_bytes);
  const DeviceResult result =
      faults.read_errno != 0 ? -faults.read_errno : connection.device->Read(bytes, capacity);
  if (result < 0) bytes.clear();
  Record({std::chrono::steady_clock::now(), connection.path, DeviceOperation::kRead, bytes, 0, 0, result});
  return result;
}

DeviceResult DeviceServer::Write(Connection& connection, const std::string& bytes) {
  if (connection.device == nullptr || !connection.flags.write) return -EBADF;
  const DeviceFaults faults = FaultsOf(connection.path);
  const DeviceResult result = faults.write_errno != 0 ? -faults.write_errno : connection.device->Write(bytes);
  Record({std::chrono::steady_clock::now(), connection.path, DeviceOperation::kWrite, bytes, 0, 0, result});
  return result;
}

DeviceResult DeviceServer::Ioctl(Connection& connection, std::uint32_t request, std::uint64_t argument) {
  if (connection.device == nullptr) return -EBADF;
  const DeviceFaults faults = FaultsOf(connection.path);
  const DeviceResult result =
      faults.ioctl_errno != 0 ? -faults.ioctl_errno : connection.device->Ioctl(request, argument);
  Record({std::chrono::steady_clock::now(),
          connection.path,
          DeviceOperation::kIoctl,
          {},
          request,
          argument,
          result});
  return result;
}

void DeviceServer::Close(Connection& connection) {
  if (connection.device == nullptr) return;
  connection.device.reset();
  connection.node.reset();
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    --open_counts_[connection.path];
  }
  Record({std::chrono::steady_clock::now(), connection.path, DeviceOperation::kClose, {}, 0, 0, 0});
}

DeviceResult DeviceServer::Stat(const std::string& path, DeviceMessage& answer) {
  const std::shared_ptr<Device> node = FindNode(path);
  if (node == nullptr || FaultsOf(path).missing) return -ENOENT;
  const NodeStat stat = node->Stat();
  answer.argument = static_cast<std::uint64_t>(stat.kind);
  answer.request = stat.permissions;
  return 0;
}

std::shared_ptr<Device> DeviceServer::FindNode(const std::string& path) const {
  const std::lock_guard<std::mutex> lock(mutex_);
  const auto found = nodes_.find(path);
  return found == nodes_.end() ? nullptr : found->second;
}

DeviceFaults DeviceServer::FaultsOf(const std::string& path) const {
  const std::lock_guard<std::mutex> lock(mutex_);
  const auto found = faults_.find(path);
  return found == faults_.end() ? DeviceFaults{} : found->second;
}

void DeviceServer::Record(DeviceAccess access) {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (accesses_.size() == kLogCapacity) accesses_.pop_front();
  accesses_.push_back(std::move(access));
}

}  // namespace rolu_sim
