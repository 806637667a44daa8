#include "bench/serial_client.h"

#include <fcntl.h>
#include <sys/select.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cstring>

#include "simulator/system/system_error.h"

namespace rolu_bench {

SerialClient::SerialClient(const std::string& device_path)
    : port_(open(device_path.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC)) {
  termios attributes{};
  if (!port_ || tcgetattr(port_.get(), &attributes) != 0) rolu_sim::ThrowErrno("opening " + device_path);
  cfmakeraw(&attributes);
  if (tcsetattr(port_.get(), TCSANOW, &attributes) != 0 || tcflush(port_.get(), TCIFLUSH) != 0) {
    rolu_sim::ThrowErrno("setting up " + device_path);
  }
}

bool SerialClient::AskWatchdogTime() const {
  constexpr char kCommand[] = {'W', 'D', 'T', 'G', '\r'};
  if (write(port_.get(), kCommand, sizeof kCommand) != sizeof kCommand) return false;
  for (;;) {
    fd_set readable;
    FD_ZERO(&readable);
    FD_SET(port_.get(), &readable);
    timeval timeout{1, 0};
    if (select(port_.get() + 1, &readable, nullptr, nullptr, &timeout) <= 0) return false;
    std::array<char, 36> bytes{};
    const ssize_t count = read(port_.get(), bytes.data(), bytes.size());
    if (count <= 0) return false;
    if (memchr(bytes.data(), '\r', static_cast<std::size_t>(count)) != nullptr) return true;
  }
}

}  // namespace rolu_bench
