#include <cstring>

#include "kavo_rolu.h"
#include "tests/oracle/operations.h"
#include "tests/vpm/vpm_family.h"

namespace rolu_test {
namespace {

constexpr ROLU_STATUS kDone = ROLU_STATUS_SUCCESS;

const Call kGetVolts = Into(KAVO_ROLU_VPM_GetBackupBatteryVoltage);
const Call kGetCelsius = Into(KAVO_ROLU_VPM_GetBackupBatteryTemperture);
const Call kGetPercent = Into(KAVO_ROLU_VPM_GetBackupBatteryPercentageOfCharge);

Bytes Number(int number) {
  return Written(number);
}

TEST_F(VpmTest, DownFamilyRefusesEveryBackupBatteryCall) {
  Run(Refused(BackupBatteryOperations(), ROLU_STATUS_NOT_INITIALIZED));
  Run(RefusedForNullOutput(BackupBatteryOperations(), ROLU_STATUS_NOT_INITIALIZED));
}

TEST_F(VpmTest, BackupBatteryCallsSayWhatTheyMean) {
  BringUp();
  Run(BackupBatteryOperations());
  Run(RefusedForNullOutput(BackupBatteryOperations(), ROLU_STATUS_INVALID_PARAMETER));
  Run({
      {"4 V", kGetVolts, {"0FA0"}, kDone, Written(4.0F), "B04\r"},
      {"no number", kGetVolts, {"OK"}, kDone, Written(0.0F), "B04\r"},
      {"just below zero",
       kGetCelsius,
       {"0AAB"},
       kDone,
       Written(static_cast<float>(2731.0 * 0.1 - 273.15)),
       "B03\r"},
      {"absolute zero", kGetCelsius, {"OK"}, kDone, Written(-273.15F), "B03\r"},
      {"negative", kGetPercent, {"-1"}, kDone, Number(-1), "B22\r"},
      {"too wide", kGetPercent, {"FFFFFFFF"}, kDone, Number(0x7FFFFFFF), "B22\r"},
  });
}

// Flags are only ever set, so the record is cleared first; the untouched ones keep a mark.
TEST_F(VpmTest, BackupBatteryInfoSetsFlags) {
  struct Row {
    const char* word;
    std::vector<size_t> flags;  // by their order in the record
  };
  const Row kRows[] = {
      {"1000000010000001", {0, 3, 9}},
      {"1100111110000111", {0, 1, 2, 3, 4, 5, 6, 7, 8, 9}},
      {"0011000001111000", {}},
      {"110", {1, 2}},
      {"1111111111111111111111111111111111111111", {0, 1, 2, 3, 4, 5, 6, 7, 8, 9}},
      {"2", {}},
  };
  BringUp();
  for (const Row& row : kRows) {
    SCOPED_TRACE(row.word);
    BACKUP_BATTERY_INFO expected;
    memset(&expected, 7, sizeof expected);
    BACKUP_BATTERY_INFO info = expected;
    expected.info_value = 31;
    for (const size_t flag : row.flags) (&expected.status_bit0)[flag] = 1;
    Prepare({"", {}, {"1F", row.word}});
    EXPECT_EQ(KAVO_ROLU_VPM_GetBackupBatteryInfo(&info), kDone);
    EXPECT_EQ(memcmp(&info, &expected, sizeof info), 0);
    EXPECT_EQ(Traffic(), "B09\rB05\r");
  }
}

}  // namespace
}  // namespace rolu_test
