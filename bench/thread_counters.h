#pragma once

#include <time.h>

#include <cstdint>
#include <filesystem>
#include <vector>

namespace rolu_bench {

// The directories in /proc of this process's threads except the main one.
std::vector<std::filesystem::path> OtherThreads();

// How often the thread of this directory went to sleep so far. Throws std::runtime_error when the
// kernel does not say.
std::uint64_t VoluntarySwitches(const std::filesystem::path& thread);

double Seconds(clockid_t clock);

}  // namespace rolu_bench
