#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace rolu {

struct CommonOptions;

// Results, on standard output. A write that fails is remembered for OutputError; the work goes on.
void Out(std::string_view text);

// The same, and what was written so far leaves at once.
void OutNow(std::string_view text);

// Flushes; 0, or the errno of the first write that failed.
int OutputError();

// Asks on the terminal whether to go on with what has `consequences` (each completes "this ..."),
// unless there are none or -y was given. Throws CommandError(kPartlyDone) when the answer is not yes.
void Confirm(const CommonOptions& options, const std::vector<std::string>& consequences);

}  // namespace rolu
