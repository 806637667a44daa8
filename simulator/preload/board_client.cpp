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

NextCall<int (*)(int)> next_close("close");

void CloseKeepingErrno(int fd) {
  const int error = errno;
  next_close.get()(fd);
  errno = error;
}

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
  int result = 0;
  do {
    result = connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address);
  } while (result != 0 && errno == EINTR);
  if (result == 0) return fd;
  next_close.get()(fd);
  errno = ENODEV;
  return -1;
}

bool SendParts(int fd, const DeviceMessage& header, const void* payload, size_t size) {
  // sendmsg does not write through these pointers; its type cannot say so.
  iovec parts[2] = {{const_cast<DeviceMessage*>(&header), sizeof header}, {const_cast<void*>(payload), size}};
  msghdr message{};
  message.msg_iov = parts;
  message.msg_iovlen = 2;
  ssize_t sent = 0;
  do {
    sent = sendmsg(fd, &message, MSG_NOSIGNAL);
  } while (sent < 0 && errno == EINTR);
  return sent > 0;
}

bool ReceiveParts(int fd, DeviceMessage& header, void* payload, size_t size) {
  iovec parts[2] = {{&header, sizeof header}, {payload, size}};
  msghdr message{};
  message.msg_iov = parts;
  message.msg_iovlen = 2;
  ssize_t received = 0;
  do {
    received = recvmsg(fd, &message, 0);
  } while (received < 0 && errno == EINTR);
  return received >= static_cast<ssize_t>(sizeof header);
}

struct Outgoing {
  const void* bytes;
  size_t size;
};

struct Incoming {
  void* buffer;
  size_t size;
};

// `message` is the request and becomes the answer. Its result, or -1 and the errno of it.
int Converse(int fd, DeviceMessage& message, Outgoing sent, Incoming received) {
  message.length = static_cast<uint32_t>(sent.size > 0 ? sent.size : received.size);
  if (!SendParts(fd, message, sent.bytes, sent.size) ||
      !ReceiveParts(fd, message, received.buffer, received.size)) {
    errno = EIO;
    return -1;
  }
  if (message.result >= 0) return message.result;
  errno = -message.result;
  return -1;
}

// A conversation on a connection of its own.
int Call(DeviceMessage& message, Outgoing sent, Incoming received) {
  const int fd = ConnectToBoard();
  if (fd < 0) return -1;
  const int result = Converse(fd, message, sent, received);
  CloseKeepingErrno(fd);
  return result;
}

int CallDevice(DeviceId device, DeviceMessage& message, Outgoing sent, Incoming received) {
  message.descriptor = device;
  const int result = Call(message, sent, received);
  if (result < 0 && errno == ENODEV) errno = EIO;
  return result;
}

DeviceMessage RequestFor(DeviceRequest operation) {
  DeviceMessage message{};
  message.operation = static_cast<uint32_t>(operation);
  return message;
}

void Tell(DeviceRequest what) {
  const int error = errno;
  DeviceMessage message = RequestFor(what);
  Call(message, {nullptr, 0}, {nullptr, 0});
  errno = error;
}

uint64_t OpenBitsOf(int flags) {
  const int mode = flags & O_ACCMODE;
  uint64_t bits = 0;
  if (mode != O_WRONLY) bits |= kOpenRead;
  if (mode != O_RDONLY) bits |= kOpenWrite;
  if ((flags & O_TRUNC) != 0) bits |= kOpenTruncate;
  if ((flags & O_APPEND) != 0) bits |= kOpenAppend;
  return bits;
}

size_t CutToPayload(size_t size) {
  return size < kMaxPayload ? size : kMaxPayload;
}

}  // namespace

int OpenDeviceNode(const char* path, int flags) {
  const int fd = ConnectToBoard();
  if (fd < 0) return -1;
  DeviceMessage message = RequestFor(DeviceRequest::kOpen);
  message.descriptor = SocketInode(fd);
  message.argument = OpenBitsOf(flags);
  if (Converse(fd, message, {path, strlen(path)}, {nullptr, 0}) < 0) {
    CloseKeepingErrno(fd);
    return -1;
  }
  if ((flags & O_CLOEXEC) == 0) fcntl(fd, F_SETFD, 0);
  NoteDevice(fd, message.descriptor);
  return fd;
}

ssize_t ReadDevice(DeviceId device, void* buffer, size_t size, uint64_t offset) {
  DeviceMessage message = RequestFor(DeviceRequest::kRead);
  message.argument = offset;
  return CallDevice(device, message, {nullptr, 0}, {buffer, CutToPayload(size)});
}

ssize_t WriteDevice(DeviceId device, const void* bytes, size_t size, uint64_t offset) {
  DeviceMessage message = RequestFor(DeviceRequest::kWrite);
  message.argument = offset;
  return CallDevice(device, message, {bytes, CutToPayload(size)}, {nullptr, 0});
}

int64_t SeekDevice(DeviceId device, int64_t offset, int whence) {
  DeviceMessage message = RequestFor(DeviceRequest::kSeek);
  message.request = static_cast<uint32_t>(whence);
  message.argument = static_cast<uint64_t>(offset);
  const int result = CallDevice(device, message, {nullptr, 0}, {nullptr, 0});
  return result < 0 ? -1 : static_cast<int64_t>(message.argument);
}

int IoctlDevice(DeviceId device, unsigned long request, uintptr_t argument) {
  DeviceMessage message = RequestFor(DeviceRequest::kIoctl);
  message.request = static_cast<uint32_t>(request);
  message.argument = argument;
  return CallDevice(device, message, {nullptr, 0}, {nullptr, 0});
}

void SettleDevices() {
  Tell(DeviceRequest::kSettle);
}

void AnnounceSerialOpen() {
  Tell(DeviceRequest::kSerialOpens);
}

int AskBoard(DeviceRequest question, const char* path, DeviceMessage& answer, void* buffer, size_t size) {
  answer = RequestFor(question);
  return Call(answer, {path, strlen(path)}, {buffer, size});
}

int AskAbout(DeviceId device, DeviceRequest question, DeviceMessage& answer) {
  answer = RequestFor(question);
  return CallDevice(device, answer, {nullptr, 0}, {nullptr, 0});
}

}  // namespace rolu_sim
