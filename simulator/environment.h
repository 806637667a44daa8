#pragma once

#include <string>
#include <string_view>

namespace rolu_sim {

// The environment of a process that uses a board. All functions but the first set variables: call them while
// no other thread reads the environment. They throw std::system_error.

// The value of LD_PRELOAD that loads `object` as well as the objects in `present`, which is the value so far
// and may be empty. A sanitizer's runtime must come first; then comes `object`, then the rest.
std::string PreloadListWith(std::string_view present, std::string_view object);

void SetEnvironment(const char* variable, const std::string& value);

// Adds `directory` at the front of PATH for this process and its children, or removes it again.
void AddCommandDirectory(const std::string& directory);
void RemoveCommandDirectory(const std::string& directory);

}  // namespace rolu_sim
