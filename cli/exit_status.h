#pragma once

#include <fmt/format.h>

#include <string>

namespace rolu {

// The exit statuses of the programs; kExitStatusTexts explains them to the users.
enum ExitStatus : int {
  kDone = 0,
  kPartlyDone = 1,
  kWrongUse = 2,
  kRefused = 3,
  kNoAnswer = 4,
  kBusy = 5,
  kBitten = 6,
  kPowerCut = 7,
  kReset = 8,
  kUnexpected = 9,
  kDiverged = 10,
  // These have the meanings that env(1) and timeout(1) give them.
  kBoardFailed = 125,
  kNotExecutable = 126,
  kNotFound = 127,
  kSignalBase = 128,  // plus the number of the signal
};

struct ExitStatusText {
  const char* number;
  const char* meaning;
};

inline constexpr ExitStatusText kExitStatusTexts[] = {
    {"0", "all was done"},
    {"1", "not all was done: a part failed, a question was not answered with yes, or a wait timed out"},
    {"2", "wrong use: unknown name, bad value, unusable file; nothing was sent to the board"},
    {"3", "the board refused: an error of the MCU, a value it does not take, something it does not provide"},
    {"4", "no answer: the MCU is silent, its port cannot be opened, a device is missing, or no board is up"},
    {"5", "busy: another process holds the MCU's port, or a board is up at that place"},
    {"6", "the watchdog of a simulated board bit"},
    {"7", "the power of a simulated board was cut while its program ran"},
    {"8", "the program reset the simulated board"},
    {"9", "an expectation of a scenario failed"},
    {"10", "a replay diverged from its recording"},
    {"125", "rolu-sim could not set the board up"},
    {"126", "rolu-sim could not run the program"},
    {"127", "rolu-sim did not find the program"},
    {"129-143",
     "a signal ended the work, or the program on a simulated board: 128 and its number (130: Ctrl-C)"},
};

// The statuses as a part of a help text.
inline std::string ExitStatusHelp() {
  std::string text = "Exit status:\n";
  for (const ExitStatusText& status : kExitStatusTexts) {
    text += fmt::format("  {:<8}  {}\n", status.number, status.meaning);
  }
  return text;
}

}  // namespace rolu
