#include "simulator/preload/descriptor_table.h"

#include <errno.h>
#include <string.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <atomic>

#include "simulator/devices/board_paths.h"
#include "simulator/preload/next_call.h"
#include "simulator/preload/redirection.h"

namespace rolu_sim {
namespace {

// An entry of the table: one of these two values, or the inode of a device (sockets have 32-bit inodes).
constexpr uint32_t kUnknown = 0;
constexpr uint32_t kOrdinary = UINT32_MAX;

constexpr int kEntries = 65536;
std::atomic<uint32_t> table[kEntries];

// A descriptor outside the table stays unknown.
bool IsInTable(int fd) {
  return fd >= 0 && fd < kEntries;
}

void Note(int fd, uint32_t known) {
  if (!IsInTable(fd)) return;
  table[fd].store(known, std::memory_order_release);
  if (fd <= STDERR_FILENO) FollowStandardStream(fd, known != kUnknown && known != kOrdinary);
}

// Whether the socket's peer is the board's device server.
bool IsConnectedToBoard(int fd) {
  sockaddr_un peer{};
  socklen_t size = sizeof peer - 1;
  if (getpeername(fd, reinterpret_cast<sockaddr*>(&peer), &size) != 0 || peer.sun_family != AF_UNIX)
    return false;
  return strcmp(peer.sun_path, PathInRoot(kDeviceSocketName).get()) == 0;
}

uint64_t LookAt(int fd) {
  const int error = errno;
  struct stat64 status {};
  uint64_t device = 0;
  if (Next<fstat64>("fstat64")(fd, &status) == 0) {
    if (S_ISSOCK(status.st_mode) && IsConnectedToBoard(fd)) device = status.st_ino;
    Note(fd, device == 0 ? kOrdinary : static_cast<uint32_t>(device));
  }
  errno = error;
  return device;
}

// A program may start with a device as a standard stream.
[[gnu::constructor]] void LookAtStandardStreams() {
  for (int fd = STDIN_FILENO; fd <= STDERR_FILENO; ++fd) DeviceOf(fd);
}

}  // namespace

uint64_t SocketInode(int fd) {
  const int error = errno;
  struct stat64 status {};
  const bool is_socket = Next<fstat64>("fstat64")(fd, &status) == 0 && S_ISSOCK(status.st_mode);
  errno = error;
  return is_socket ? status.st_ino : 0;
}

uint64_t KnownDeviceOf(int fd) {
  if (!IsInTable(fd)) return 0;
  const uint32_t known = table[fd].load(std::memory_order_acquire);
  return known != kUnknown && known != kOrdinary && known == SocketInode(fd) ? known : 0;
}

uint64_t DeviceOf(int fd) {
  if (IsInTable(fd) && table[fd].load(std::memory_order_acquire) == kOrdinary) return 0;
  if (const uint64_t device = KnownDeviceOf(fd)) return device;
  return fd < 0 || BoardRootPath() == nullptr ? 0 : LookAt(fd);
}

void NoteDevice(int fd, uint64_t device) {
  Note(fd, static_cast<uint32_t>(device));
}

}  // namespace rolu_sim
