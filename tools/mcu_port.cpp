#include "tools/mcu_port.h"

#include <errno.h>
#include <fcntl.h>
#include <fmt/format.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include "cli/messages.h"
#include "tools/interrupt.h"
#include "tools/port_owner.h"
#include "tools/status_words.h"

namespace rolu {
namespace {

constexpr char kLineEnds[] = "\r\n";

[[noreturn]] void Fail(const char* doing) {
  throw CommandError(kNoAnswer, fmt::format("could not {} {}: {}", doing, kMcuPort, ErrnoText(errno)));
}

bool MakeRaw(int port) {
  termios line{};
  if (tcgetattr(port, &line) != 0) return false;
  cfmakeraw(&line);
  cfsetispeed(&line, B115200);
  cfsetospeed(&line, B115200);
  return tcsetattr(port, TCSANOW, &line) == 0;
}

}  // namespace

McuPort::McuPort() : port_(open(kMcuPort, O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC)) {
  if (port_ < 0) Fail("open");
  if (MakeRaw(port_)) return;
  close(port_);
  Fail("use");
}

McuPort::~McuPort() {
  close(port_);
}

void McuPort::SendLine(std::string_view line) {
  tcflush(port_, TCIFLUSH);
  received_.clear();
  const std::string text = std::string(line) + '\r';
  if (write(port_, text.data(), text.size()) != static_cast<ssize_t>(text.size())) Fail("write to");
}

std::optional<std::string> McuPort::ReadLine(std::chrono::milliseconds patience) {
  const auto deadline = std::chrono::steady_clock::now() + patience;
  while (true) {
    received_.erase(0, received_.find_first_not_of(kLineEnds));
    const std::size_t end = received_.find_first_of(kLineEnds);
    if (end != std::string::npos) {
      std::string line = received_.substr(0, end);
      received_.erase(0, end);
      return line;
    }
    const auto left =
        std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
    if (left.count() <= 0) return std::nullopt;
    pollfd ends[] = {{port_, POLLIN, 0}, {interrupt::Descriptor(), POLLIN, 0}};
    poll(ends, 2, static_cast<int>(left.count()));
    interrupt::ThrowIfRequested();
    char bytes[256];
    const ssize_t length = read(port_, bytes, sizeof bytes);
    if (length > 0) {
      received_.append(bytes, static_cast<std::size_t>(length));
    } else if (length == 0 || (errno != EAGAIN && errno != EINTR)) {
      throw CommandError(kNoAnswer, fmt::format("{} hung up", kMcuPort));
    }
  }
}

}  // namespace rolu
