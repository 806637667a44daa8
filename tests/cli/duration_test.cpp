#include "cli/duration.h"

#include <gtest/gtest.h>

namespace rolu_test {
namespace {

using std::chrono::milliseconds;

TEST(Duration, IsANumberWithDecimalsAndItsUnit) {
  const struct {
    const char* text;
    std::optional<milliseconds> duration;
  } kRows[] = {
      {"20ms", milliseconds(20)},
      {"2s", milliseconds(2000)},
      {"1.5s", milliseconds(1500)},
      {"0.0004s", milliseconds(0)},
      {"0.0006s", milliseconds(1)},
      {"3m", milliseconds(180'000)},
      {"3min", milliseconds(180'000)},
      {"1.5min", milliseconds(90'000)},
      {"0.5h", milliseconds(1'800'000)},
      {"0s", milliseconds(0)},
      {"8784h", rolu::kLongestDuration},
      {"8785h", std::nullopt},
      {"1000000000000000000000h", std::nullopt},
      {"20", std::nullopt},
      {"", std::nullopt},
      {"s", std::nullopt},
      {"-1s", std::nullopt},
      {"+1s", std::nullopt},
      {"1 s", std::nullopt},
      {" 1s", std::nullopt},
      {"1s ", std::nullopt},
      {"1S", std::nullopt},
      {"1e3s", std::nullopt},
      {"0x1s", std::nullopt},
      {"1,5s", std::nullopt},
      {"1h30m", std::nullopt},
      {"2d", std::nullopt},
      {"infs", std::nullopt},
      {"nans", std::nullopt},
  };
  for (const auto& row : kRows) EXPECT_EQ(rolu::ParseDuration(row.text), row.duration) << row.text;
  EXPECT_EQ(rolu::ParseDuration("3s", milliseconds(2999)), std::nullopt);
}

TEST(Duration, IsWrittenAsItIsRead) {
  for (const char* const text : {"0s", "1ms", "1500ms", "2s", "90s", "3min", "2h", "8784h"}) {
    EXPECT_EQ(rolu::FormatDuration(*rolu::ParseDuration(text)), text);
  }
}

}  // namespace
}  // namespace rolu_test
