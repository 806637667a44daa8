#pragma once

#include <string>
#include <string_view>

namespace rolu_sim {

// The environment of a process that meets a board. All but the first of these set variables: call them while
// no other thread reads any. They throw std::system_error.

// The value of LD_PRELOAD that loads `object` besides what `present` (the value so far, may be
// empty) names: runtimes of sanitizers first, which insist on it, then `object`, then the rest.
std::string PreloadListWith(std::string_view present, std::string_view object);

void SetEnvironment(const char* variable, const std::string& value);

// Puts `directory` first among those that this process (and what it starts) searches for commands,
// or takes it out again.
void AddCommandDirectory(const std::string& directory);
void RemoveCommandDirectory(const std::string& directory);

}  // namespace rolu_sim
