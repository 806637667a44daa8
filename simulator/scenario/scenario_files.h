#pragma once

#include <string>
#include <vector>

#include "simulator/scenario/scenario.h"

namespace rolu_sim {

// A scenario as it is on the disk, not yet checked.
struct ScenarioFile {
  std::string name;  // its path
  std::string text;
};

// The names of the ready-made scenarios, in alphabetical order.
std::vector<std::string> ReadyScenarioNames();

// A file, or a ready-made scenario by its name. Throws UsageError when there is neither.
ScenarioFile ReadScenarioFile(const std::string& file_or_name);

}  // namespace rolu_sim
