#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace rolu {

// The MCU's port without the library, which has no call for a command of one's own. While it is open, no
// family of the library may be up.
class McuPort {
 public:
  // Opens the port as the library does. Throws CommandError.
  McuPort();
  ~McuPort();
  McuPort(const McuPort&) = delete;
  McuPort& operator=(const McuPort&) = delete;

  // Sends a line with its end; what has arrived before is discarded. Throws CommandError.
  void SendLine(std::string_view line);

  // The next line without its end; nothing when none came in `patience`. Throws CommandError when a signal
  // asks for an end or the port hangs up.
  std::optional<std::string> ReadLine(std::chrono::milliseconds patience);

 private:
  int port_;
  std::string received_;
};

}  // namespace rolu
