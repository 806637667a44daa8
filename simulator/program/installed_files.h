#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace rolu_sim {

// Files that belong to this program. They are beside it, as in a build tree, or at their place in its
// installation. These functions throw std::runtime_error when a file is in neither place.
std::filesystem::path FindPreloadObject();

// The preloaded object for programs of another processor, which is built or installed beside this one.
std::optional<std::filesystem::path> FindPreloadObjectFor(const std::string& triplet);

// The names of the ready-made scenarios, in alphabetical order.
std::vector<std::string> ReadyScenarioNames();

// The text of a scenario, not yet checked.
struct ScenarioFile {
  std::string name;  // its path
  std::string text;
};

// Reads a file, or a ready-made scenario by its name. Throws UsageError when there is neither.
ScenarioFile ReadScenarioFile(const std::string& file_or_name);

}  // namespace rolu_sim
