#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace rolu_sim {

// What belongs to this program: beside it, as in a build tree, or where it is installed with it.
// These throw std::runtime_error when it is in neither place.
std::filesystem::path FindPreloadObject();

// The names of the ready-made scenarios, in alphabetical order.
std::vector<std::string> ReadyScenarioNames();

// A scenario as it is on the disk, not yet checked.
struct ScenarioFile {
  std::string name;  // its path
  std::string text;
};

// A file, or a ready-made scenario by its name. Throws UsageError when there is neither.
ScenarioFile ReadScenarioFile(const std::string& file_or_name);

}  // namespace rolu_sim
