// Calls that copy or close a descriptor.

#include <fcntl.h>
#include <stdarg.h>
#include <unistd.h>

#include "simulator/preload/board_client.h"
#include "simulator/preload/descriptor_table.h"
#include "simulator/preload/next_call.h"

namespace rolu_sim {
namespace {

// Runs `copy`, which returns a copy of `fd` or fails, and notes what the copy is.
template <typename Copy>
int NoteCopy(int fd, Copy copy) {
  const DeviceId device = DeviceOf(fd);
  const int copied = copy();
  if (copied >= 0 && copied != fd) NoteDevice(copied, device);
  return copied;
}

// The same for a copy that replaces a descriptor, which may be the last one of its device.
template <typename Copy>
int NoteReplacement(int fd, int replaced, Copy copy) {
  const bool was_device = fd != replaced && KnownDeviceOf(replaced) != 0;
  const int copied = NoteCopy(fd, copy);
  if (was_device && copied >= 0) SettleDevices();
  return copied;
}

// The argument of a command is an int, a pointer or nothing.
template <typename Call>
int Fcntl(Call next, int fd, int command, void* argument) {
  const auto call = [=] { return next(fd, command, argument); };
  return command == F_DUPFD || command == F_DUPFD_CLOEXEC ? NoteCopy(fd, call) : call();
}

}  // namespace
}  // namespace rolu_sim

using namespace rolu_sim;

#pragma GCC visibility push(default)
extern "C" {

// When this returns, the board has handled the close.
int close(int fd) {
  const bool is_device = KnownDeviceOf(fd) != 0;
  if (is_device) NoteDevice(fd, 0);
  const int result = Next<close>("close")(fd);
  if (is_device) SettleDevices();
  return result;
}

int dup(int fd) noexcept {
  return NoteCopy(fd, [=] { return Next<dup>("dup")(fd); });
}

int dup2(int fd, int copy) noexcept {
  return NoteReplacement(fd, copy, [=] { return Next<dup2>("dup2")(fd, copy); });
}

int dup3(int fd, int copy, int flags) noexcept {
  return NoteReplacement(fd, copy, [=] { return Next<dup3>("dup3")(fd, copy, flags); });
}

int fcntl(int fd, int command, ...) {
  va_list arguments;
  va_start(arguments, command);
  void* const argument = va_arg(arguments, void*);
  va_end(arguments);
  return Fcntl(Next<fcntl>("fcntl"), fd, command, argument);
}

int fcntl64(int fd, int command, ...) {
  va_list arguments;
  va_start(arguments, command);
  void* const argument = va_arg(arguments, void*);
  va_end(arguments);
  return Fcntl(Next<fcntl64>("fcntl64"), fd, command, argument);
}

#if __TIMESIZE == 32
int __fcntl_time64(int fd, int command, ...) {
  va_list arguments;
  va_start(arguments, command);
  void* const argument = va_arg(arguments, void*);
  va_end(arguments);
  return Fcntl(Next<__fcntl_time64>("__fcntl_time64"), fd, command, argument);
}
#endif

}  // extern "C"
#pragma GCC visibility pop
