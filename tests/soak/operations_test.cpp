#include "soak/operations.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "tests/operations/operations.h"
#include "tests/support/interface_header.h"

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

TEST(SoakOperations, AreAllExportsOfTheMcuFamiliesButThoseNotProvided) {
  Names called;
  for (const FamilyCalls& family : Families()) {
    called.insert(family.initialize.name);
    called.insert(family.deinitialize.name);
  }
  for (const Operation& operation : Operations()) called.insert(operation.name);
  Names expected = rolu_test::DeclaredForMcuFamilies();
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
