#include "kavo_rolu.h"
#include "tests/oracle/operations.h"
#include "tests/vpm/vpm_family.h"

namespace rolu_test {
namespace {

Call GetInfo(int mode) {
  return [mode](void* output) {
    return KAVO_ROLU_VPM_GetLBPThresholdInfo(static_cast<CAR_BATTERY_MODE>(mode),
                                             static_cast<BATTERY_INFO*>(output));
  };
}

Call GetInfoIntoNull(int mode) {
  return [get = GetInfo(mode)](void*) { return get(nullptr); };
}

std::vector<CallRow> InfoRows(const BATTERY_INFO& range_12v, const BATTERY_INFO& range_24v) {
  const BATTERY_INFO zeros{};
  return {
      Fails("below the modes", GetInfo(-1), {}, ROLU_STATUS_NOT_SUPPORTED),
      Gives("mode 0", GetInfo(0), {}, Written(zeros)),
      Gives("mode 1", GetInfo(1), {}, Written(zeros)),
      Gives("24 V", GetInfo(2), {}, Written(range_24v)),
      Gives("12 V", GetInfo(3), {}, Written(range_12v)),
      Fails("above the modes", GetInfo(4), {}, ROLU_STATUS_NOT_SUPPORTED),
      Fails("above the modes, null output", GetInfoIntoNull(4), {}, ROLU_STATUS_NOT_SUPPORTED),
      Fails("null output", GetInfoIntoNull(3), {}, ROLU_STATUS_INVALID_PARAMETER),
      Fails("mode 0, null output", GetInfoIntoNull(0), {}, ROLU_STATUS_INVALID_PARAMETER),
  };
}

// The only test of its program: no other one may have filled the ranges before.
TEST_F(VpmTest, RangesAreZeroFromLoadAndStayAfterTheFamilyIsDown) {
  Run(InfoRows({}, {}));

  board().mcu().Script(rolu_sim::CommandMatch::Exactly("MCPR3"), rolu_sim::Reply::Line("02AA02EB030C"));
  board().mcu().Script(rolu_sim::CommandMatch::Exactly("MCPR2"), rolu_sim::Reply::Line("052F05AE05ED"));
  BringUp();
  const BATTERY_INFO range_12v = {780 * k12V, 682 * k12V, 747 * k12V, 747 * k12V};
  const BATTERY_INFO range_24v = {1517 * k24V, 1327 * k24V, 1454 * k24V, 1454 * k24V};
  Run(InfoRows(range_12v, range_24v));

  EXPECT_EQ(KAVO_ROLU_VPM_Deinitialize(), ROLU_STATUS_SUCCESS);
  Run(InfoRows(range_12v, range_24v));
}

}  // namespace
}  // namespace rolu_test
