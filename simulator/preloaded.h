#pragma once

#include <string>
#include <string_view>

#include "simulator/devices/board_paths.h"

namespace rolu_sim {

// What makes a process meet a board: the preloaded object, which the loader takes from LD_PRELOAD, and the
// board's commands before the system's. All but IsPreloaded set environment variables, or read them: call
// them while no other thread sets one.

// Makes sure that the preloaded object is loaded in this process: returns at once if it is, else
// runs the program again from its beginning with LD_PRELOAD set. Call it first in main. Ends the
// process with status 2 and a sentence when that does not help. Under an emulator a program
// cannot run itself again: give it the object from outside there (qemu-arm -E LD_PRELOAD=...).
void EnsurePreloaded(int argc, char** argv);

bool IsPreloaded();

// The value of LD_PRELOAD that loads `object` besides what `present` (the value so far, may be
// empty) names: runtimes of sanitizers first, which insist on it, then `object`, then the rest.
std::string PreloadListWith(std::string_view present, std::string_view object);

// Throws std::system_error.
void SetEnvironment(const char* variable, const std::string& value);

// Puts `directory` first among those that this process (and what it starts) searches for commands,
// or takes it out again. Throws std::system_error.
void AddCommandDirectory(const std::string& directory);
void RemoveCommandDirectory(const std::string& directory);

}  // namespace rolu_sim
