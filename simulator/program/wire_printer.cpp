#include "simulator/program/wire_printer.h"

#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <string>

namespace rolu_sim {
namespace {

std::string Printable(const std::string& bytes) {
  std::string text;
  for (const char byte : bytes) {
    if (byte >= ' ' && byte <= '~') {
      text += byte;
      continue;
    }
    std::array<char, 8> escape{};
    std::snprintf(escape.data(), escape.size(), "\\x%02X",
                  static_cast<unsigned>(static_cast<unsigned char>(byte)));
    text += escape.data();
  }
  return text;
}

}  // namespace

WireLog::LineListener PrintWireSince(TimePoint start) {
  return [start](const WireEvent& line) {
    std::array<char, 32> prefix{};
    std::snprintf(prefix.data(), prefix.size(), "%12.6f %c ",
                  std::chrono::duration<double>(line.time - start).count(),
                  line.direction == Direction::kToMcu ? '>' : '<');
    const std::string text = prefix.data() + Printable(line.bytes) + '\n';
    // One write for one line: the program under test writes there as well.
    [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, text.data(), text.size());
  };
}

}  // namespace rolu_sim
