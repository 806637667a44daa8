#pragma once

#include "tools/common_options.h"
#include "tools/report.h"
#include "tools/session.h"

namespace rolu {

// Reads one setting into the report, with its success or failure in the outcome. Throws when a signal asks
// for an end.
ROLU_STATUS ReadInto(Session& session, const Setting& setting, Report& report, Outcome& outcome);

// Reads the setting or the group of that name and prints it. Throws CommandError when it cannot be read.
ExitStatus ReadAndPrint(Session& session, const std::string& name, const CommonOptions& common);

}  // namespace rolu
