#pragma once

#include <string>
#include <vector>

namespace rolu_sim {

// Short names of the board's device files: "serial", "i2c", "gpio37-value", ...
std::vector<std::string> BoardFileNames();

// The path of one of them.
std::string BoardFilePath(const std::string& name);

}  // namespace rolu_sim
