#pragma once

#include <string>
#include <vector>

#include "tools/common_options.h"

namespace rolu {

// Asks on the terminal whether to go on with what has `consequences` (each completes "this ..."),
// unless there are none or -y was given. Throws CommandError(kPartlyDone) when the answer is not yes.
void Confirm(const CommonOptions& options, const std::vector<std::string>& consequences);

}  // namespace rolu
