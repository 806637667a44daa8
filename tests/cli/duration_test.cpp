#include "cli/duration.h"

#include <gtest/gtest.h>

namespace rolu_test {
namespace {

using std::chrono::milliseconds;

TEST(Duration, IsANumberWithDecimalsAndItsUnit) {
  const struct {
    const char* text;
    milliseconds duration;
  } kRows[] = {
      {"20ms", milliseconds(20)},      {"2s", milliseconds(2000)},        {"1.5s", milliseconds(1500)},
      {"0.0004s", milliseconds(0)},    {"0.0006s", milliseconds(1)},      {"3m", milliseconds(180'000)},
      {"3min", milliseconds(180'000)}, {"1.5min", milliseconds(90'000)},  {"0.5h", milliseconds(1'800'000)},
      {"0s", milliseconds(0)},         {"8784h", rolu::kLongestDuration},
  };
  for (const auto& row : kRows) EXPECT_EQ(rolu::ParseDuration(row.text), row.duration) << row.text;
  for (const char* text : {"8785h", "1000000000000000000000h", "20", "", "s", "-1s", "+1s", "1 s", " 1s",
                           "1s ", "1S", "1e3s", "0x1s", "1,5s", "1h30m", "2d", "infs", "nans"})
    EXPECT_EQ(rolu::ParseDuration(text), std::nullopt) << text;
  EXPECT_EQ(rolu::ParseDuration("3s", milliseconds(2999)), std::nullopt);
}

TEST(Duration, IsWrittenAsItIsRead) {
  for (const char* const text : {"0s", "1ms", "1500ms", "2s", "90s", "3min", "2h", "8784h"}) {
    EXPECT_EQ(rolu::FormatDuration(*rolu::ParseDuration(text)), text);
  }
}

}  // namespace
}  // namespace rolu_test
