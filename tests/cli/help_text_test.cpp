#include "cli/help_text.h"

#include <gtest/gtest.h>

namespace rolu_test {
namespace {

TEST(HelpText, LongLinesGoOnUnderTheirLastColumn) {
  const struct {
    const char* text;
    const char* wrapped;  // to 40 columns
  } kRows[] = {
      {"short\n", "short\n"},
      {"a line of words that has more than forty characters\n",
       "a line of words that has more than forty\ncharacters\n"},
      {"  --option  explains itself in a second column of words\n",
       "  --option  explains itself in a second\n            column of words\n"},
      // A column that is too far to the right is not kept.
      {"  --a-very-long-option-name  in words that go on\n",
       "  --a-very-long-option-name  in words\n  that go on\n"},
      {"  rolu watch --on power-off-ignition 'systemctl poweroff'\n",
       "  rolu watch --on power-off-ignition 'systemctl poweroff'\n"},
      {"/sys/devices/omapdss/display0/backlight/brightness is one word\n",
       "/sys/devices/omapdss/display0/backlight/brightness\nis one word\n"},
  };
  for (const auto& row : kRows) {
    EXPECT_EQ(rolu::Wrapped(row.text, 40, "rolu"), row.wrapped);
    EXPECT_EQ(rolu::Wrapped(row.text, 0, "rolu"), row.text) << "no limit";
  }
}

}  // namespace
}  // namespace rolu_test
