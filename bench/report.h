#pragma once

#include "bench/measurements.h"

namespace rolu_bench {

enum class Verdict { kAllKept, kOver };

// Prints one table to standard output: what was measured, against which limit. A limit whose figures
// are missing is not judged, and the table says so.
Verdict PrintReport(const Measurements& found);

}  // namespace rolu_bench
