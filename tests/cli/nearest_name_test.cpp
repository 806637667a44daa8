#include "cli/nearest_name.h"

#include <gtest/gtest.h>

namespace rolu_test {
namespace {

TEST(NearestName, IsSuggestedForASlipAndForNothingElse) {
  const std::vector<std::string> known = {
      "status",      "set",           "on", "off", "ignition-on", "ignition-off", "battery.voltage",
      "battery.lbp", "backup.voltage"};
  const struct {
    const char* unknown;
    const char* suggestion;
  } kRows[] = {
      {"stauts", "; did you mean status?"},  // a swap of two neighbours counts once
      {"statu", "; did you mean status?"},
      {"sst", "; did you mean set?"},
      {"bat", "; did you mean battery.voltage?"},  // the first name that begins with it
      {"battery.lpb", "; did you mean battery.lbp?"},
      {"voltage", "; did you mean battery.voltage?"},  // the group is left out
      {"votlage", "; did you mean battery.voltage?"},
      {"of", "; did you mean off?"},
      {"oo", ""},                                       // half of "on" is not near
      {"ignition-of", "; did you mean ignition-off?"},  // the beginning of a name beats a single slip
      {"watch", ""},
      {"", ""},
  };
  for (const auto& row : kRows)
    EXPECT_EQ(rolu::Suggestion(row.unknown, known), row.suggestion) << row.unknown;
}

}  // namespace
}  // namespace rolu_test
