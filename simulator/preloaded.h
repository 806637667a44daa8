#pragma once

namespace rolu_sim {

// The environment variable that tells the preloaded object where the board is.
inline constexpr char kRootVariable[] = "ROLU_SIM_ROOT";

// Makes sure that the preloaded object is loaded in this process: returns at once if it is, else
// runs the program again from its beginning with LD_PRELOAD set. Call it first in main. Ends the
// process with status 2 and a sentence when that does not help. Under an emulator a program
// cannot run itself again: give it the object from outside there (qemu-arm -E LD_PRELOAD=...).
void EnsurePreloaded(int argc, char** argv);

bool IsPreloaded();

}  // namespace rolu_sim
