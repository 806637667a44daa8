#include "simulator/preload/board_client.h"

#include <errno.h>
#include <fcntl.h>
#include <string.h>
#include <sys/socket.h>
#include <sys/uio.h>
#include <sys/un.h>
#include <unistd.h>

#include "simulator/devices/board_paths.h"
#include "simulator/preload/descriptor_table.h"
#include "simulator/preload/next_call.h"
#include "simulator/preload/redirection.h"

namespace rolu_sim {
namespace {

// Repeats `call` while a signal interrupts it.
template <typename Call>
ssize_t Uninterrupted(Call call) {
  ssize_t result = 0;
  do {
    result = call();
  } while (result < 0 && errno == EINTR);
  return result;
}

void CloseKeepingErrno(int fd) {
  const int error = errno;
  Next<close>("close")(fd);
  errno = error;
}

// Fails with ENODEV when no board answers.
int ConnectToBoard() {
  const PathInRoot path(kDeviceSocketName);
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (strlen(path.get()) == 0 || strlen(path.get()) >= sizeof address.sun_path) {
    errno = ENODEV;
    return -1;
  }
  memcpy(address.sun_path, path.get(), strlen(path.get()));
  const int fd = socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0);
  if (fd < 0) return -1;
  const auto* const generic = reinterpret_cast<const sockaddr*>(&address);
  if (Uninterrupted([&] { return connect(fd, generic, sizeof address); }) == 0) return fd;
  errno = ENODEV;
  CloseKeepingErrno(fd);
  return -1;
}

// The kernel does not write to a payload that is sent, but the type of an iovec cannot say so.
Payload Sent(const void* bytes, size_t size) {
  return {const_cast<void*>(bytes), size};
}

// `message` is the request and becomes the answer. Returns the answer's result; when that is an error, -1
// with errno.
int Converse(int fd, DeviceMessage& message, const Payload& sent, const Payload& received) {
  message.length = static_cast<uint32_t>(sent.size > 0 ? sent.size : received.size);
  msghdr datagram = sent.Behind(message);
  ssize_t length = Uninterrupted([&] { return sendmsg(fd, &datagram, MSG_NOSIGNAL); });
  datagram = received.Behind(message);
  if (length > 0) length = Uninterrupted([&] { return recvmsg(fd, &datagram, 0); });
  if (length < static_cast<ssize_t>(sizeof message)) {
    errno = EIO;
    return -1;
  }
  if (message.result >= 0) return message.result;
  errno = -message.result;
  return -1;
}

// Converses on a new connection.
int Call(DeviceMessage& message, const Payload& sent, const Payload& received) {
  const int fd = ConnectToBoard();
  if (fd < 0) return -1;
  const int result = Converse(fd, message, sent, received);
  CloseKeepingErrno(fd);
  return result;
}

int CallDevice(DeviceMessage& message, const Payload& sent = {}, const Payload& received = {}) {
  const int result = Call(message, sent, received);
  if (result < 0 && errno == ENODEV) errno = EIO;
  return result;
}

// Keeps errno. Returns what the board answered: 0 if it is gone.
int32_t Tell(DeviceRequest what) {
  const int error = errno;
  DeviceMessage message{.operation = what};
  Call(message, {}, {});
  errno = error;
  return message.result;
}

size_t CutToPayload(size_t size) {
  return size < kMaxPayload ? size : kMaxPayload;
}

}  // namespace

void Payload::Add(void* bytes, size_t count) {
  if (count == 0) return;
  parts[part_count++] = {bytes, count};
  size += count;
}

msghdr Payload::Behind(DeviceMessage& message) const {
  parts[0] = {&message, sizeof message};
  msghdr datagram{};
  datagram.msg_iov = parts;
  datagram.msg_iovlen = part_count;
  return datagram;
}

int OpenDeviceNode(const char* path, int flags) {
  const int fd = ConnectToBoard();
  if (fd < 0) return -1;
  const DeviceId device = SocketInode(fd);
  DeviceMessage message{.operation = DeviceRequest::kOpen,
                        .request = static_cast<uint32_t>(flags & O_ACCMODE),
                        .descriptor = device};
  if (Converse(fd, message, Sent(path, strlen(path)), {}) < 0) {
    CloseKeepingErrno(fd);
    return -1;
  }
  if ((flags & O_CLOEXEC) == 0) fcntl(fd, F_SETFD, 0);
  NoteDevice(fd, device);
  return fd;
}

ssize_t ReadDevice(DeviceId device, void* buffer, size_t size, uint64_t offset) {
  DeviceMessage message{.operation = DeviceRequest::kRead, .descriptor = device, .argument = offset};
  return CallDevice(message, {}, {buffer, CutToPayload(size)});
}

ssize_t WriteDevice(DeviceId device, const void* bytes, size_t size, uint64_t offset) {
  DeviceMessage message{.operation = DeviceRequest::kWrite, .descriptor = device, .argument = offset};
  return CallDevice(message, Sent(bytes, CutToPayload(size)));
}

int64_t SeekDevice(DeviceId device, int64_t offset, int whence) {
  DeviceMessage message{.operation = DeviceRequest::kSeek,
                        .request = static_cast<uint32_t>(whence),
                        .descriptor = device,
                        .argument = static_cast<uint64_t>(offset)};
  return CallDevice(message) < 0 ? -1 : static_cast<int64_t>(message.argument);
}

int IoctlDevice(DeviceId device, unsigned long request, uintptr_t argument) {
  DeviceMessage message{.operation = DeviceRequest::kIoctl,
                        .request = static_cast<uint32_t>(request),
                        .descriptor = device,
                        .argument = argument};
  return CallDevice(message);
}

int ExchangeWithDevice(DeviceId device, unsigned long request, const Payload& sent, const Payload& received) {
  DeviceMessage message{
      .operation = DeviceRequest::kExchange, .request = static_cast<uint32_t>(request), .descriptor = device};
  return CallDevice(message, sent, received);
}

void SettleDevices() {
  Tell(DeviceRequest::kSettle);
}

bool AnnounceSerialOpen() {
  const int32_t result = Tell(DeviceRequest::kSerialOpens);
  if (result < 0) errno = -result;
  return result >= 0;
}

int AskBoard(DeviceRequest question, const char* path, void* buffer, size_t size) {
  DeviceMessage message{.operation = question};
  return Call(message, Sent(path, strlen(path)), {buffer, size});
}

int AskNode(DeviceId device, const char* path, DeviceMessage& answer) {
  answer = {.operation = device == 0 ? DeviceRequest::kStat : DeviceRequest::kStatDescriptor,
            .descriptor = device};
  return device == 0 ? Call(answer, Sent(path, strlen(path)), {}) : CallDevice(answer);
}

}  // namespace rolu_sim
