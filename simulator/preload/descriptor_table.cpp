#include "simulator/preload/descriptor_table.h"

#include <errno.h>
#include <stdint.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>

namespace rolu_sim {
namespace {

struct Entry {
  std::atomic<uint32_t> inode{0};  // of the socket; 0: not a device
  std::atomic<pid_t> owner{0};
};

constexpr int kEntries = 65536;
Entry table[kEntries];

// Sockets have 32-bit inode numbers.
uint32_t SocketInode(int fd) {
  struct stat64 status {};
  if (fstat64(fd, &status) != 0 || !S_ISSOCK(status.st_mode)) return 0;
  return static_cast<uint32_t>(status.st_ino);
}

bool IsInTable(int fd) {
  return fd >= 0 && fd < kEntries;
}

}  // namespace

bool MarkAsDevice(int fd) {
  if (!IsInTable(fd)) {
    errno = EMFILE;
    return false;
  }
  table[fd].owner.store(getpid(), std::memory_order_relaxed);
  table[fd].inode.store(SocketInode(fd), std::memory_order_release);
  return true;
}

void UnmarkDevice(int fd) {
  table[fd].inode.store(0, std::memory_order_release);
}

bool IsMarkedAsDevice(int fd) {
  if (!IsInTable(fd)) return false;
  const uint32_t inode = table[fd].inode.load(std::memory_order_acquire);
  return inode != 0 && inode == SocketInode(fd);
}

bool IsOwnedByThisProcess(int fd) {
  return table[fd].owner.load(std::memory_order_relaxed) == getpid();
}

}  // namespace rolu_sim
