#include <gmock/gmock.h>
#include <stdlib.h>

#include "simulator/preloaded.h"

int main(int argc, char** argv) {
  rolu_sim::EnsurePreloaded(argc, argv);
  // An emulated program starts emulators and shells, which cannot load the board's object.
  if (ROLU_EMULATED) unsetenv("LD_PRELOAD");
  testing::InitGoogleMock(&argc, argv);
  return RUN_ALL_TESTS();
}
