#pragma once

namespace rolu_sim {

// The exit statuses that are rolu-sim's own. A program that was run gives its own status; the others
// are those of env(1) and timeout(1).
inline constexpr int kRefused = 1;   // the board did not do it, or what was waited for did not come
inline constexpr int kWrongUse = 2;  // of the command line or of a scenario
inline constexpr int kBitten = 3;    // the watchdog bit, with --fail-on-bite
inline constexpr int kNoBoard = 4;   // no board answers
inline constexpr int kBoardFailed = 125;
inline constexpr int kNotExecutable = 126;
inline constexpr int kNotFound = 127;
inline constexpr int kSignalBase = 128;  // plus the number of the signal that ended the program

inline constexpr char kExitStatusHelp[] =
    "Exit status: 0 done; 1 the board refuses, or what was waited for did not come; 2 wrong use;\n"
    "3 the watchdog bit (run and serve with --fail-on-bite); 4 no board answers; 125 the board cannot be\n"
    "set up; 126 the program cannot be run; 127 it is not found. Else that of the program that was run, or\n"
    "128 and the number of the signal that ended it.";

}  // namespace rolu_sim
