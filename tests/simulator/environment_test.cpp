#include "simulator/environment.h"

#include <gtest/gtest.h>

namespace rolu_sim {
namespace {

TEST(PreloadList, PutsSanitizersFirstAndKeepsWhatWasThere) {
  constexpr struct {
    const char* present;
    const char* expected;
  } kRows[] = {
      {"", "/sim.so"},
      {"/a.so", "/sim.so:/a.so"},
      {"/usr/lib/libasan.so.8", "/usr/lib/libasan.so.8:/sim.so"},
      {"/a.so /x/libtsan.so.2:/b.so", "/x/libtsan.so.2:/sim.so:/a.so:/b.so"},
      {"/a.so:/sim.so", "/sim.so:/a.so"},
      {"/not/libasan/c.so", "/sim.so:/not/libasan/c.so"},
  };
  for (const auto& row : kRows)
    EXPECT_EQ(PreloadListWith(row.present, "/sim.so"), row.expected) << row.present;
}

}  // namespace
}  // namespace rolu_sim
