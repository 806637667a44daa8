#ifndef TESTS_VPM_VPM_FAMILY_H
#define TESTS_VPM_VPM_FAMILY_H

#include "kavo_rolu.h"
#include "tests/support/call_table.h"

namespace rolu_test {

class VpmTest : public CallTableTest {
 protected:
  VpmTest() : CallTableTest({[] { return KAVO_ROLU_VPM_Initialize(0); }, KAVO_ROLU_VPM_Deinitialize}) {}
};

}  // namespace rolu_test

#endif  // TESTS_VPM_VPM_FAMILY_H
