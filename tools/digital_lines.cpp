#include "tools/digital_lines.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

namespace rolu {

std::string DigitalLine::ValueFile() const {
  return fmt::format("/sys/class/gpio/{}/value", line);
}

std::optional<bool> DigitalLine::Level() const {
  const int file = open(ValueFile().c_str(), O_RDONLY | O_CLOEXEC);
  if (file < 0) return std::nullopt;
  char level = '0';
  const bool is_read = read(file, &level, 1) == 1;
  close(file);
  return is_read ? std::optional(level == '1') : std::nullopt;
}

bool LinesAreUnprepared() {
  return access(kInputLines[0].ValueFile().c_str(), F_OK) != 0 && access("/sys/class/gpio/export", F_OK) == 0;
}

}  // namespace rolu
