#include "bench/peers/listed_port.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/ioctl.h>

#include <cerrno>
#include <cstdarg>
#include <cstring>

namespace {

constexpr char kListed[] = "/dev/tty";

std::string& Target() {
  static std::string target;
  return target;
}

}  // namespace

namespace rolu_bench {

const char* NameAsListedPort(const std::string& device_path) {
  Target() = device_path;
  return kListed;
}

}  // namespace rolu_bench

// libserialport is a fortified build and opens its port with this function. A program's own functions come
// before those of every library.
extern "C" int __open_2(const char* path, int flags) {  // NOLINT(bugprone-reserved-identifier)
  const bool is_listed = std::strcmp(path, kListed) == 0 && !Target().empty();
  return open(is_listed ? Target().c_str() : path, flags);
}

// libserialport also asks for the modem lines, which a pseudo-terminal does not have.
extern "C" int ioctl(int fd, unsigned long request, ...) {
  using Ioctl = int (*)(int, unsigned long, ...);
  static const Ioctl next = reinterpret_cast<Ioctl>(dlsym(RTLD_NEXT, "ioctl"));
  va_list arguments;
  va_start(arguments, request);
  void* const argument = va_arg(arguments, void*);
  va_end(arguments);
  const int result = next(fd, request, argument);
  const bool is_about_modem_lines =
      request == TIOCMGET || request == TIOCMSET || request == TIOCMBIS || request == TIOCMBIC;
  if (result == 0 || errno != ENOTTY || !is_about_modem_lines) return result;
  if (request == TIOCMGET) *static_cast<int*>(argument) = 0;
  return 0;
}
