#pragma once

namespace rolu_sim {

// The exit statuses that are rolu-sim's own, as env(1) and timeout(1) have them. Any other is the
// program's.
inline constexpr int kWrongUse = 2;
inline constexpr int kBoardFailed = 125;
inline constexpr int kNotExecutable = 126;
inline constexpr int kNotFound = 127;
inline constexpr int kSignalBase = 128;  // plus the number of the signal that ended the program

}  // namespace rolu_sim
