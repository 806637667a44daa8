#include "kavo_rolu.h"
#include "tests/oracle/operations.h"
#include "tests/support/process_state.h"
#include "tests/vpm/vpm_family.h"

namespace rolu_test {
namespace {

using rolu_sim::CommandMatch;
using rolu_sim::Reply;

constexpr ROLU_STATUS kDone = ROLU_STATUS_SUCCESS;
constexpr ROLU_STATUS kDown = ROLU_STATUS_NOT_INITIALIZED;

TEST_F(VpmTest, FirmwareIsToldFromMemoryWhileTheFamilyIsUp) {
  const CallRow& get = IdentityOperations().front();
  Run({Fails("while down", get.call, {}, kDown),
       Fails("version", With(KAVO_ROLU_VPM_GetLibVersion, nullptr), {}, ROLU_STATUS_NOT_SUPPORTED)});
  BringUp();
  Run({get});
  Run({{"null", get.call, {}, ROLU_STATUS_INVALID_PARAMETER, {}, "", 0, true}});
}

// Each row brings the family up once. Before it the family was up with the answers below, whose
// scales and ranges no row has, and whose version is the longest: what a row does not write shows.
class VpmStartUpTest : public VpmTest {
 protected:
  void RunStartUps(const std::vector<CallRow>& rows) {
    const std::string version(31, '9');
    const CallRow before = {
        "before", nullptr, {"OK", version, "0.125", "0.0625", "001000110012", "001300140015"}};
    for (const CallRow& row : rows) {
      Prepare(before);
      BringUp();
      EXPECT_EQ(KAVO_ROLU_VPM_Deinitialize(), kDone);

      Run({row});
      const ROLU_STATUS down = row.status == kDone ? kDone : kDown;
      EXPECT_EQ(KAVO_ROLU_VPM_Deinitialize(), down) << "row: " << row.name;
      EXPECT_TRUE(board().mcu().WaitForHostClosed(kGenerous)) << "row: " << row.name;
    }
  }
};

BATTERY_INFO Range(float scale, float start, float mid, float end) {
  return {end * scale, start * scale, mid * scale, mid * scale};
}

const BATTERY_INFO kBefore12V = Range(0.0625F, 0x10, 0x11, 0x12);
const BATTERY_INFO kBefore24V = Range(0.125F, 0x13, 0x14, 0x15);

// Writes both ranges, and the firmware version if it can be had.
ROLU_STATUS StartUp(void* output) {
  const ROLU_STATUS status = KAVO_ROLU_VPM_Initialize(255);
  auto* ranges = static_cast<BATTERY_INFO*>(output);
  EXPECT_EQ(KAVO_ROLU_VPM_GetLBPThresholdInfo(CAR_BATTERY_MODE_12V, &ranges[0]), kDone);
  EXPECT_EQ(KAVO_ROLU_VPM_GetLBPThresholdInfo(CAR_BATTERY_MODE_24V, &ranges[1]), kDone);
  void* firmware = &ranges[2];
  EXPECT_EQ(KAVO_ROLU_VPM_GetFWVersion(static_cast<VPM_FIRMWARE_INFO*>(firmware)),
            status == kDone ? kDone : kDown);
  return status;
}

Bytes StartedUp(const BATTERY_INFO& range_12v, const BATTERY_INFO& range_24v, const std::string& firmware) {
  Bytes bytes = Written(range_12v, range_24v);
  const Bytes text = Characters(firmware, 32);
  bytes.insert(bytes.end(), text.begin(), text.end());
  return bytes;
}

constexpr char kVersion[] = "*VER:  1. 26*";
constexpr char k12VUnits[] = "000100020003";
constexpr char k24VUnits[] = "000400050006";
constexpr char kFirmwareWire[] = "Hello\rATF0\r";

// A start-up that succeeds, whose ranges are 1 to 6 units.
CallRow ComesUp(std::string name, std::vector<Answer> answers, float scale_12v, float scale_24v) {
  answers.insert(answers.end(), {k12VUnits, k24VUnits});
  const Bytes output = StartedUp(Range(scale_12v, 1, 2, 3), Range(scale_24v, 4, 5, 6), kVersion);
  return Gives(std::move(name), StartUp, std::move(answers), output, kVpmStartUpWire);
}

// A start-up that fails after it has read these ranges.
CallRow StaysDown(std::string name, std::vector<Answer> answers, ROLU_STATUS status, std::string wire,
                  const BATTERY_INFO& range_12v = kBefore12V) {
  CallRow row = Fails(std::move(name), StartUp, std::move(answers), status, std::move(wire));
  row.output = Written(range_12v, kBefore24V);
  return row;
}

TEST_F(VpmStartUpTest, ReadsFirmwareScalesAndRanges) {
  const BATTERY_INFO k12VRange = Range(0.25F, 1, 2, 3);
  RunStartUps({
      ComesUp("all", {"OK", kVersion, "0.5", "0.25"}, 0.25F, 0.5F),
      ComesUp("greeting refused", {"ERR-M08", kVersion, "0.5", "0.25"}, 0.25F, 0.5F),
      ComesUp("scales refused", {"OK", kVersion, "ERR-W01", "ERR-M08"}, 0.015385F, 0.01582F),
      ComesUp("scales without a number", {"OK", kVersion, "volts", "-"}, 0.0625F, 0.125F),
      ComesUp("scales with more than a number", {"OK", kVersion, " 15e-1V", "0.75,1"}, 0.75F, 1.5F),
      Gives("short ranges", StartUp, {"OK", kVersion, "0.5", "0.25", "00010002", "4"},
            StartedUp(Range(0.25F, 1, 2, 0), Range(0.5F, 4, 0, 0), kVersion), kVpmStartUpWire),
      Gives("odd ranges", StartUp, {"OK", kVersion, "0.5", "0.25", "0x1F -2GFFFFF", "xxxxxxxx"},
            StartedUp(Range(0.25F, 31, -2, 65535), Range(0.5F, 0, 0, 0), kVersion), kVpmStartUpWire),
      Gives("long firmware", StartUp, {"OK", std::string(63, 'v'), "0.5", "0.25", k12VUnits, "4"},
            StartedUp(k12VRange, Range(0.5F, 4, 0, 0), std::string(31, 'v')), kVpmStartUpWire),
  });
}

TEST_F(VpmStartUpTest, FailsWithItsFirmwareOrARange) {
  RunStartUps({
      StaysDown("firmware, refused", {"OK", "ERR-M08"}, ROLU_STATUS_INVALID_PARAMETER, kFirmwareWire),
      StaysDown("firmware, error", {"OK", "ERR-E04"}, ROLU_STATUS_VPM_ERROR_REPLY, kFirmwareWire),
      StaysDown("12 V range", {"OK", "*", "0.5", "0.25", "ERR-Q02"}, ROLU_STATUS_VPM_ERROR_REPLY,
                "Hello\rATF0\rMCVU2\rMCVU3\rMCPR3\r"),
      StaysDown("24 V range", {"OK", "*", "0.5", "0.25", k12VUnits, "ERR-M08"}, ROLU_STATUS_INVALID_PARAMETER,
                kVpmStartUpWire, Range(0.25F, 1, 2, 3)),
  });
}

TEST_F(VpmTest, StartUpPrintsTheFirmwareVersion) {
  struct VersionLine {
    const char* answer;
    const char* printed;
  };
  constexpr VersionLine kVersionLines[] = {
      {"*VER:1.9*", "[VPM] your version is   1.  9. It's must great then . 10\n"},
      {"*VER:  1. 26*", "[VPM] your version is   1. 26. It's must great then . 10\n"},
      {"*VER:123.4567*", "[VPM] your version is 123.456. It's must great then . 10\n"},
      {"*VER:7", "[VPM] your version is   7.  0. It's must great then . 10\n"},
      {"VER:1.9", "[VPM] your version is   0.  0. It's must great then . 10\n"},
      {"ERR-M08", ""},
  };
  for (const VersionLine& line : kVersionLines) {
    board().mcu().Script(CommandMatch::Exactly("ATF0"), Reply::Line(line.answer));
    testing::internal::CaptureStdout();
    KAVO_ROLU_VPM_Initialize(0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), line.printed) << "row: " << line.answer;
    KAVO_ROLU_VPM_Deinitialize();
  }
}

}  // namespace
}  // namespace rolu_test
