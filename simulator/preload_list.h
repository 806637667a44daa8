#pragma once

#include <string>
#include <string_view>

namespace rolu_sim {

// The value of LD_PRELOAD that loads `object` besides what `present` (the value so far, may be
// empty) names: runtimes of sanitizers first, which insist on it, then `object`, then the rest.
std::string PreloadListWith(std::string_view present, std::string_view object);

}  // namespace rolu_sim
