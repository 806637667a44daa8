#include "simulator/devices/device_server.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/uio.h>
#include <sys/un.h>
#include <sys/utsname.h>

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

// A utsname as bytes.
std::string NamesOf(const KernelIdentity& kernel) {
  utsname names{};
  kernel.machine.copy(names.machine, sizeof names.machine - 1);
  kernel.release.copy(names.release, sizeof names.release - 1);
  kernel.version.copy(names.version, sizeof names.version - 1);
  return {reinterpret_cast<const char*>(&names), sizeof names};
}

}  // namespace

// What one open gave a program, and all copies of it.
struct DeviceServer::Descriptor {
  UniqueFd socket;  // hung up once the last copy is closed
  std::string path;
  Node node;  // outlives the open device
  OpenFlags flags;
  std::unique_ptr<OpenDevice> device;
  std::uint64_t position = 0;
};

DeviceServer::DeviceServer(const BoardRoot& root, KernelIdentity kernel, std::function<void()> on_serial_open)
    : root_(root),
      kernel_(std::move(kernel)),
      on_serial_open_(std::move(on_serial_open)),
      listener_(Listen(root.DeviceSocketPath())) {
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
  nodes_[path] = {std::move(device), ++last_inode_};
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
  while (!stopping_) {
    WaitForWork();
    ServeDescriptors();
    can_accept_ = AcceptCallers();
    callers_.remove_if([this](UniqueFd& caller) { return ServeCaller(caller); });
  }
}

void DeviceServer::WaitForWork() {
  std::vector<pollfd> sources = {{wakeup_.fd(), POLLIN, 0}};
  if (can_accept_) sources.push_back({listener_.get(), POLLIN, 0});
  for (const UniqueFd& caller : callers_) sources.push_back({caller.get(), POLLIN, 0});
  for (const auto& [id, descriptor] : descriptors_) sources.push_back({descriptor.socket.get(), POLLIN, 0});
  poll(sources.data(), sources.size(), can_accept_ ? -1 : kRetryAcceptMs);
  wakeup_.Take();
}

void DeviceServer::ServeDescriptors() {
  std::string bytes;
  for (auto next = descriptors_.begin(); next != descriptors_.end();) {
    const auto current = next++;
    Descriptor& descriptor = current->second;
    ssize_t received = 0;
    do {
      bytes.resize(kMaxPayload);
      received = recv(descriptor.socket.get(), bytes.data(), bytes.size(), MSG_DONTWAIT);
      if (received <= 0) break;
      bytes.resize(static_cast<std::size_t>(received));
      Write(descriptor, bytes, kAtPosition);
    } while (true);
    // A write of no bytes looks like the end.
    pollfd hang_up{descriptor.socket.get(), 0, 0};
    if (received == 0 && poll(&hang_up, 1, 0) == 1) {
      Close(descriptor);
      descriptors_.erase(current);
    }
  }
}

bool DeviceServer::AcceptCallers() {
  while (true) {
    UniqueFd caller(accept4(listener_.get(), nullptr, nullptr, SOCK_CLOEXEC));
    if (!caller) return errno == EAGAIN || errno == EINTR || errno == ECONNABORTED;
    callers_.push_back(std::move(caller));
  }
}

bool DeviceServer::ServeCaller(UniqueFd& caller) {
  DeviceMessage request{};
  std::string payload(kMaxPayload, '\0');
  std::array<iovec, 2> parts{{{&request, sizeof request}, {payload.data(), payload.size()}}};
  msghdr message{};
  message.msg_iov = parts.data();
  message.msg_iovlen = parts.size();
  const ssize_t received = recvmsg(caller.get(), &message, MSG_DONTWAIT);
  if (received < 0 && (errno == EAGAIN || errno == EINTR)) return false;
  if (received < static_cast<ssize_t>(sizeof request)) return true;
  payload.resize(static_cast<std::size_t>(received) - sizeof request);

  ServeDescriptors();
  std::string answer_payload;
  DeviceMessage answer = Answer(request, payload, answer_payload);
  parts = {{{&answer, sizeof answer}, {answer_payload.data(), answer_payload.size()}}};
  message = {};
  message.msg_iov = parts.data();
  message.msg_iovlen = parts.size();
  // The program waits for this answer and has nothing else in its buffer: it cannot block.
  sendmsg(caller.get(), &message, MSG_NOSIGNAL | MSG_DONTWAIT);
  if (request.operation == DeviceRequest::kOpen && answer.result == 0) {
    shutdown(caller.get(), SHUT_WR);
    descriptors_[request.descriptor].socket = std::move(caller);
  }
  return true;
}

DeviceMessage DeviceServer::Answer(const DeviceMessage& request, const std::string& payload,
                                   std::string& answer_payload) {
  DeviceMessage answer{};
  switch (request.operation) {
    case DeviceRequest::kOpen:
      answer.result = Open(request.descriptor, payload, request.argument);
      break;
    case DeviceRequest::kSettle:
      break;
    case DeviceRequest::kStat:
      answer.result = Stat(request.descriptor, payload, answer);
      break;
    case DeviceRequest::kShow:
      answer.result = Show(payload);
      break;
    case DeviceRequest::kSerialOpens:
      on_serial_open_();
      break;
    case DeviceRequest::kUname:
      answer_payload = NamesOf(kernel_);
      break;
    default:
      if (const auto found = descriptors_.find(request.descriptor); found != descriptors_.end()) {
        answer = AnswerFor(found->second, request, payload, answer_payload);
      } else {
        answer.result = -EIO;  // of a board that is gone
      }
  }
  answer.operation = request.operation;
  answer.length = static_cast<std::uint32_t>(answer_payload.size());
  return answer;
}

DeviceMessage DeviceServer::AnswerFor(Descriptor& descriptor, const DeviceMessage& request,
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
    default:
      answer.result = -EINVAL;
  }
  return answer;
}

DeviceResult DeviceServer::Open(std::uint64_t id, const std::string& path, std::uint64_t open_bits) {
  const DeviceFaults faults = FaultsOf(path);
  Descriptor descriptor{{}, path, FindNode(path), FlagsOf(open_bits), {}};
  DeviceResult result = 0;
  if (descriptor.node.device == nullptr || faults.missing) {
    result = -ENOENT;
  } else if (faults.open_errno != 0) {
    result = -faults.open_errno;
  } else {
    result = descriptor.node.device->Open(descriptor.flags, descriptor.device);
  }
  if (result == 0) {
    descriptors_.insert_or_assign(id, std::move(descriptor));
    const std::lock_guard<std::mutex> lock(mutex_);
    ++open_counts_[path];
  }
  Record({std::chrono::steady_clock::now(), path, DeviceOperation::kOpen, {}, 0, open_bits, result});
  return result;
}

DeviceResult DeviceServer::Read(Descriptor& descriptor, const DeviceMessage& request, std::string& bytes) {
  if (!descriptor.flags.read) return -EBADF;
  const DeviceFaults faults = FaultsOf(descriptor.path);
  std::size_t capacity = std::min<std::size_t>(request.length, kMaxPayload);
  if (faults.max_read_bytes) capacity = std::min(capacity, *faults.max_read_bytes);
  const bool at_position = request.argument == kAtPosition;
  const std::uint64_t offset = at_position ? descriptor.position : request.argument;
  const DeviceResult result =
      faults.read_errno != 0 ? -faults.read_errno : descriptor.device->Read(bytes, capacity, offset);
  if (result < 0) bytes.clear();
  if (result > 0 && at_position) descriptor.position += static_cast<std::uint64_t>(result);
  Record({std::chrono::steady_clock::now(), descriptor.path, DeviceOperation::kRead, bytes, 0, 0, result});
  return result;
}

DeviceResult DeviceServer::Write(Descriptor& descriptor, const std::string& bytes, std::uint64_t offset) {
  if (!descriptor.flags.write) return -EBADF;
  const DeviceFaults faults = FaultsOf(descriptor.path);
  const DeviceResult result = faults.write_errno != 0 ? -faults.write_errno : descriptor.device->Write(bytes);
  if (result > 0 && offset == kAtPosition) descriptor.position += static_cast<std::uint64_t>(result);
  Record({std::chrono::steady_clock::now(), descriptor.path, DeviceOperation::kWrite, bytes, 0, 0, result});
  return result;
}

DeviceResult DeviceServer::Ioctl(Descriptor& descriptor, std::uint32_t request, std::uint64_t argument) {
  const DeviceFaults faults = FaultsOf(descriptor.path);
  const DeviceResult result =
      faults.ioctl_errno != 0 ? -faults.ioctl_errno : descriptor.device->Ioctl(request, argument);
  Record({std::chrono::steady_clock::now(),
          descriptor.path,
          DeviceOperation::kIoctl,
          {},
          request,
          argument,
          result});
  return result;
}

void DeviceServer::Close(const Descriptor& descriptor) {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    --open_counts_[descriptor.path];
  }
  Record({std::chrono::steady_clock::now(), descriptor.path, DeviceOperation::kClose, {}, 0, 0, 0});
}

DeviceResult DeviceServer::Stat(std::uint64_t id, const std::string& path, DeviceMessage& answer) const {
  const auto descriptor = descriptors_.find(id);
  if (id != 0 && descriptor == descriptors_.end()) return -EIO;
  if (id == 0 && !IsThere(path)) return -ENOENT;
  const Node node = id == 0 ? FindNode(path) : descriptor->second.node;
  answer.request = node.device->Mode();
  answer.descriptor = node.inode;
  return 0;
}

DeviceResult DeviceServer::Show(const std::string& path) const {
  const std::string parent = path.substr(0, path.rfind('/'));
  const bool is_node = IsThere(path);
  const BoardRoot::Entries entries = EntriesOf(is_node ? parent : path);
  if (entries.empty()) return -ENOENT;
  return root_.ShowDirectory(is_node ? parent : path, entries) ? 0 : -EIO;
}

bool DeviceServer::IsThere(const std::string& path) const {
  return FindNode(path).device != nullptr && !FaultsOf(path).missing;
}

BoardRoot::Entries DeviceServer::EntriesOf(const std::string& directory) const {
  const std::string start = directory + '/';
  std::vector<std::string> paths;
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    for (const auto& [path, node] : nodes_) paths.push_back(path);
  }
  BoardRoot::Entries entries;
  for (const std::string& path : paths) {
    if (path.compare(0, start.size(), start) != 0 || !IsThere(path)) continue;
    const std::size_t end = path.find('/', start.size());
    entries[path.substr(start.size(), end - start.size())] = end != std::string::npos;
  }
  return entries;
}

DeviceServer::Node DeviceServer::FindNode(const std::string& path) const {
  const std::lock_guard<std::mutex> lock(mutex_);
  const auto found = nodes_.find(path);
  return found == nodes_.end() ? Node{} : found->second;
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
