#pragma once

#include "simulator/devices/board_paths.h"

namespace rolu_sim {

// Makes sure that the preloaded object is loaded in this process: returns at once if it is, else
// runs the program again from its beginning with LD_PRELOAD set. Call it first in main. Ends the
// process with status 2 and a sentence when that does not help. Under an emulator a program
// cannot run itself again: give it the object from outside there (qemu-arm -E LD_PRELOAD=...).
void EnsurePreloaded(int argc, char** argv);

bool IsPreloaded();

}  // namespace rolu_sim
