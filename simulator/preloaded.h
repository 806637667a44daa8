#pragma once

#include "simulator/devices/board_paths.h"

namespace rolu_sim {

// Makes sure that this process has the preloaded object. Returns at once if it has; else runs the program
// again from its beginning with LD_PRELOAD set. Call it first in main. If the second start does not have the
// object either, ends the process with a message and status 2. Under an emulator a program cannot run itself
// again: there, give it the object from outside (qemu-arm -E LD_PRELOAD=...).
void EnsurePreloaded(int argc, char** argv);

bool IsPreloaded();

}  // namespace rolu_sim
