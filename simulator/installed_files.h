#pragma once

#include <filesystem>

namespace rolu_sim {

// What belongs to this program: beside it, as in a build tree, or where it is installed with it.
// These throw std::runtime_error when it is in neither place.
std::filesystem::path FindPreloadObject();
std::filesystem::path FindScenarioDirectory();

}  // namespace rolu_sim
