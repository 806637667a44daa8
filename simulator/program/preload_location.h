#pragma once

#include <string>

namespace rolu_sim {

// The preloaded object that belongs to this program: beside it, as in a build tree, or in the
// library directory that it is installed with. Throws std::runtime_error when it is in neither.
std::string FindPreloadObject();

}  // namespace rolu_sim
