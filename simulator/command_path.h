#pragma once

#include <string>

namespace rolu_sim {

// Puts `directory` first among those that this process (and what it starts) searches for commands,
// or takes it out again. Sets an environment variable: call it while no other thread reads one.
void AddCommandDirectory(const std::string& directory);
void RemoveCommandDirectory(const std::string& directory);

}  // namespace rolu_sim
