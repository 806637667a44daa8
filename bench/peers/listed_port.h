#pragma once

#include <string>

namespace rolu_bench {

// libserialport takes only ports that /sys/class/tty lists, which has no pseudo-terminals. In this
// program the name of one that every system lists leads to `device_path` when it is opened.
const char* NameAsListedPort(const std::string& device_path);

}  // namespace rolu_bench
