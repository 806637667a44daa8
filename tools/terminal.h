#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace rolu {

struct CommonOptions;

// Writes results to standard output. A write that fails is kept for OutputError; the work goes on.
void Out(std::string_view text);

// The same, and flushes all output.
void OutNow(std::string_view text);

// Flushes the output. Returns 0, or the errno of the first write that failed.
int OutputError();

// Asks on the terminal whether to go on. Each of `consequences` completes "this ...". Does not ask without
// consequences or with -y. Throws CommandError(kPartlyDone) when the answer is not yes.
void Confirm(const CommonOptions& options, const std::vector<std::string>& consequences);

}  // namespace rolu
