#pragma once

#include <string_view>

namespace rolu {

// Results, on standard output. A write that fails is remembered for OutputError; the work goes on.
void Out(std::string_view text);

// The same, and what was written so far leaves at once.
void OutNow(std::string_view text);

// Flushes; 0, or the errno of the first write that failed.
int OutputError();

}  // namespace rolu
