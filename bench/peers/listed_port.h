#pragma once

#include <string>

namespace rolu_bench {

// libserialport takes only ports that /sys/class/tty lists, and pseudo-terminals are not listed there.
// Returns the name of a port that every system lists; a program that opens this name opens `device_path`.
const char* NameAsListedPort(const std::string& device_path);

}  // namespace rolu_bench
