#pragma once

namespace rolu {

// The exit statuses of `rolu`; --help and the man page list them from kExitStatusTexts.
enum ExitStatus : int {
  kDone = 0,
  kPartlyDone = 1,
  kWrongUse = 2,
  kRefused = 3,
  kNoAnswer = 4,
  kBusy = 5,
  kSignalBase = 128,  // plus the number of the signal that ended the work
};

struct ExitStatusText {
  const char* number;
  const char* meaning;
};

inline constexpr ExitStatusText kExitStatusTexts[] = {
    {"0", "all was done"},
    {"1",
     "not all was done: some part failed (the messages name it), or a question was not answered with yes"},
    {"2", "wrong use: unknown name, bad value, unusable file; nothing was sent to the board"},
    {"3", "the board refused: an error of the MCU, a value it does not take, something it does not provide"},
    {"4", "no answer: the MCU is silent, its port cannot be opened, or a device is not there"},
    {"5", "busy: another process holds the MCU's port"},
    {"129-143", "stopped by a signal (130: Ctrl-C) before the work was done: 128 and its number"},
};

}  // namespace rolu
