// Copies of a descriptor and their end.

#include <fcntl.h>
#include <stdarg.h>
#include <unistd.h>

#include "simulator/preload/board_client.h"
#include "simulator/preload/descriptor_table.h"
#include "simulator/preload/exported.h"
#include "simulator/preload/next_call.h"

namespace rolu_sim {
namespace {

using FcntlCall = int (*)(int, int, ...);

NextCall<int (*)(int)> next_close("close");
NextCall<int (*)(int)> next_dup("dup");
NextCall<int (*)(int, int)> next_dup2("dup2");
NextCall<int (*)(int, int, int)> next_dup3("dup3");
NextCall<FcntlCall> next_fcntl("fcntl");
NextCall<FcntlCall> next_fcntl64("fcntl64");
#if __TIMESIZE == 32
NextCall<FcntlCall> next_fcntl_time64("__fcntl_time64");
#endif

// Does `copy`, which gives a copy of `fd` or a failure, and notes what the copy is.
template <typename Copy>
int NoteCopy(int fd, Copy copy) {
  const DeviceId device = DeviceOf(fd);
  const int copied = copy();
  if (copied >= 0 && copied != fd) NoteDevice(copied, device);
  return copied;
}

// The same, where the copy takes the place of a descriptor, which may be the last one of its device.
template <typename Copy>
int NoteReplacement(int fd, int replaced, Copy copy) {
  const bool was_device = fd != replaced && KnownDeviceOf(replaced) != 0;
  const int copied = NoteCopy(fd, copy);
  if (was_device && copied >= 0) SettleDevices();
  return copied;
}

// A command takes an int, a pointer or nothing.
int Fcntl(NextCall<FcntlCall>& next, int fd, int command, void* argument) {
  const auto call = [&] { return next.get()(fd, command, argument); };
  return command == F_DUPFD || command == F_DUPFD_CLOEXEC ? NoteCopy(fd, call) : call();
}

}  // namespace
}  // namespace rolu_sim

extern "C" {

// The board has seen the close when this returns.
ROLU_SIM_EXPORTED int close(int fd) {
  const bool is_device = rolu_sim::KnownDeviceOf(fd) != 0;
  if (is_device) rolu_sim::NoteDevice(fd, 0);
  const int result = rolu_sim::next_close.get()(fd);
  if (is_device) rolu_sim::SettleDevices();
  return result;
}

ROLU_SIM_EXPORTED int dup(int fd) noexcept {
  return rolu_sim::NoteCopy(fd, [fd] { return rolu_sim::next_dup.get()(fd); });
}

ROLU_SIM_EXPORTED int dup2(int fd, int copy) noexcept {
  return rolu_sim::NoteReplacement(fd, copy, [=] { return rolu_sim::next_dup2.get()(fd, copy); });
}

ROLU_SIM_EXPORTED int dup3(int fd, int copy, int flags) noexcept {
  return rolu_sim::NoteReplacement(fd, copy, [=] { return rolu_sim::next_dup3.get()(fd, copy, flags); });
}

ROLU_SIM_EXPORTED int fcntl(int fd, int command, ...) {
  va_list arguments;
  va_start(arguments, command);
  void* const argument = va_arg(arguments, void*);
  va_end(arguments);
  return rolu_sim::Fcntl(rolu_sim::next_fcntl, fd, command, argument);
}

ROLU_SIM_EXPORTED int fcntl64(int fd, int command, ...) {
  va_list arguments;
  va_start(arguments, command);
  void* const argument = va_arg(arguments, void*);
  va_end(arguments);
  return rolu_sim::Fcntl(rolu_sim::next_fcntl64, fd, command, argument);
}

#if __TIMESIZE == 32
ROLU_SIM_EXPORTED int __fcntl_time64(int fd, int command, ...) {
  va_list arguments;
  va_start(arguments, command);
  void* const argument = va_arg(arguments, void*);
  va_end(arguments);
  return rolu_sim::Fcntl(rolu_sim::next_fcntl_time64, fd, command, argument);
}
#endif

}  // extern "C"
