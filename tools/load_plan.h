#pragma once

#include <vector>

#include "tools/change.h"
#include "tools/session.h"
#include "tools/settings_file.h"

namespace rolu {

// What must be done so that the unit is as a file says, in the order in which it is done.
struct LoadPlan {
  std::vector<Change> changes;
  std::vector<const Setting*> unchanged;
  std::vector<const Setting*> not_in_file;
};

// Reads the unit and compares. A change of the battery mode switches both protections off: they
// are then set after it, to what the file says, or to what they were. Throws CommandError when the
// MCU does not answer.
LoadPlan PlanLoad(Session& session, const SettingsFile& file);

// Reads the settings of the file once more, those of `plan` that failed left out, and gives those
// that are not as the file says: one setting may have moved another.
std::vector<Change> FindDeviations(Session& session, const SettingsFile& file, const LoadPlan& plan);

}  // namespace rolu
