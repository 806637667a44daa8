#include "soak/operations.h"

#include <gtest/gtest.h>

#include <fstream>
#include <regex>
#include <set>
#include <sstream>
#include <string>

#include "tests/operations/operations.h"

namespace rolu_soak {
namespace {

using Names = std::set<std::string>;

// What the board does not provide: these answer so from memory at once, and send nothing.
const Names kNotProvided = {"VPM_GetLibVersion",
                            "WD_GetLibVersion",
                            "GSENSOR_GetLibVersion",
                            "PERIPHERALCTRL_GetLibVersion",
                            "PERIPHERALCTRL_SetRearViewSource",
                            "PERIPHERALCTRL_GetRearViewSource",
                            "PERIPHERALCTRL_SetAutoRearView",
                            "PERIPHERALCTRL_GetAutoRearView"};

Names DeclaredOfTheMcuFamilies() {
  std::stringstream text;
  text << std::ifstream(ROLU_HEADER).rdbuf();
  const std::string header = text.str();
  const std::regex declaration("KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_((VPM|WD|GSENSOR|PERIPHERALCTRL)_\\w+)");
  Names names;
  for (std::sregex_iterator match(header.begin(), header.end(), declaration), end; match != end; ++match) {
    names.insert((*match)[1]);
  }
  return names;
}

TEST(SoakOperations, AreAllExportsOfTheMcuFamiliesButThoseNotProvided) {
  Names called;
  for (const FamilyCalls& family : Families()) {
    called.insert(family.initialize.name);
    called.insert(family.deinitialize.name);
  }
  for (const Operation& operation : Operations()) called.insert(operation.name);
  Names expected = DeclaredOfTheMcuFamilies();
  for (const std::string& name : kNotProvided) EXPECT_EQ(expected.erase(name), 1U) << name;
  EXPECT_EQ(called, expected);
}

// Another test shows that those send nothing.
TEST(SoakOperations, LeaveOutNoneThatSendsACommand) {
  Names silent;
  for (const rolu_test::CallRow& row : rolu_test::SilentOperations()) silent.insert(row.name);
  for (const std::string& name : kNotProvided) EXPECT_EQ(silent.count(name), 1U) << name;
}

}  // namespace
}  // namespace rolu_soak
