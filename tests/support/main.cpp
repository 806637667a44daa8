#include <gmock/gmock.h>

#include "simulator/preloaded.h"

int main(int argc, char** argv) {
  rolu_sim::EnsurePreloaded(argc, argv);
  testing::InitGoogleMock(&argc, argv);
  return RUN_ALL_TESTS();
}
