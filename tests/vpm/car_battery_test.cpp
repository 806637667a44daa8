#include <cmath>

#include "kavo_rolu.h"
#include "tests/oracle/operations.h"
#include "tests/vpm/vpm_family.h"

namespace rolu_test {
namespace {

using rolu_sim::BatteryMode;
using rolu_sim::McuModel;

// The scales that the MCU's model tells.
constexpr float k12V = 0.015385F;
constexpr float k24V = 0.01582F;

const Call kGetVoltage = Into(KAVO_ROLU_VPM_GetCarBatteryVoltage);
const Call kGetMode = Into(KAVO_ROLU_VPM_GetCurrentCarBatteryMode);
const Call kGetThreshold = Into(KAVO_ROLU_VPM_GetLBPThresholdFor12VSystem);
const Call kGetFlag = Into(KAVO_ROLU_VPM_GetLBPStatus);
const Call kGetPrebootFlag = Into(KAVO_ROLU_VPM_GetPrebootLBPStatus);

Call SetThreshold(float volts) {
  return With(KAVO_ROLU_VPM_SetLBPThresholdFor12VSystem, volts);
}
Call SetMode(int mode) {
  return With(KAVO_ROLU_VPM_SetCurrentCarBatteryMode, mode);
}
Call SetFlag(int enable) {
  return With(KAVO_ROLU_VPM_SetLBPStatus, enable);
}
Call SetPrebootFlag(int enable) {
  return With(KAVO_ROLU_VPM_SetPrebootLBPStatus, enable);
}
Bytes Flag(char flag) {
  return Written(flag);
}

constexpr ROLU_STATUS kDone = ROLU_STATUS_SUCCESS;

const std::string kLongFlags = "01" + std::string(61, 'x');

TEST_F(VpmTest, DownFamilyRefusesEveryBatteryCall) {
  Run(Refused(CarBatteryOperations(), ROLU_STATUS_NOT_INITIALIZED));
  Run(RefusedForNullOutput(CarBatteryOperations(), ROLU_STATUS_NOT_INITIALIZED));
  Run({Fails("unknown mode", SetMode(4), {}, ROLU_STATUS_NOT_INITIALIZED)});
}

TEST_F(VpmTest, BatteryCallsSayWhatTheyMean) {
  BringUp();
  Run(CarBatteryOperations());
  Run(RefusedForNullOutput(CarBatteryOperations(), ROLU_STATUS_INVALID_PARAMETER));
}

TEST_F(VpmTest, OddThresholdsAndReadings) {
  BringUp();
  Run({
      Orders("negative", SetThreshold(-1.0F), {"OK"}, "MCPS310000\r"),
      Orders("no number", SetThreshold(NAN), {"OK"}, "MCPS310000\r"),
      Orders("infinite", SetThreshold(INFINITY), {"OK"}, "MCPS31FFFF\r"),
      Gives("prefix, lower case, rest", kGetThreshold, {" 0x2eb V"}, Written(747 * k12V), "MCPG31\r"),
      Gives("no digit", kGetThreshold, {"OK"}, Written(0.0F), "MCPG31\r"),
      Gives("unknown error", kGetThreshold, {"ERR-M05"}, Written(14 * k12V), "MCPG31\r"),
      Gives("threshold is unsigned", kGetThreshold, {"-1"}, Written(4294967295.0F * k12V), "MCPG31\r"),
      Gives("33 bits", kGetThreshold, {"123456789"}, Written(2147483647.0F * k12V), "MCPG31\r"),
      Gives("voltage is signed", kGetVoltage, {"3", "-1"}, Written(-k12V), "MCBG\rMCVG\r"),
  });
}

TEST_F(VpmTest, UnknownBatteryModes) {
  constexpr ROLU_STATUS kUnknown = ROLU_STATUS_VPM_ERROR_REPLY;
  BringUp();
  Run({
      Fails("set -1", SetMode(-1), {}, ROLU_STATUS_INVALID_PARAMETER),
      Fails("set 1", SetMode(1), {}, ROLU_STATUS_INVALID_PARAMETER),
      Fails("set 4", SetMode(4), {}, ROLU_STATUS_INVALID_PARAMETER),
      Fails("answered 1", kGetMode, {"1"}, kUnknown, "MCBG\r"),
      Fails("answered 4", kGetMode, {"04"}, kUnknown, "MCBG\r"),
      Fails("answered 13", kGetMode, {"13"}, kUnknown, "MCBG\r"),
      Fails("answered no number", kGetMode, {"OK"}, kUnknown, "MCBG\r"),
      Fails("voltage of mode 1", kGetVoltage, {"1"}, kUnknown, "MCBG\r"),
  });
}

TEST_F(VpmTest, ProtectionFlagsAreChangedInPlace) {
  BringUp();
  Run({
      Orders("pre-boot on", SetPrebootFlag(1), {"01", "OK"}, "MCCG\rMCCS11\r"),
      Orders("LBP off", SetFlag(0), {"01", "OK"}, "MCCG\rMCCS00\r"),
      Orders("LBP on stays on", SetFlag(2), {"11", "OK"}, "MCCG\rMCCS11\r"),
      Orders("on as a negative char", SetFlag(-1), {"?0", "OK"}, "MCCG\rMCCS?1\r"),
      Orders("longest answer", SetFlag(0), {kLongFlags, "OK"}, "MCCG\rMCCS00" + kLongFlags.substr(2) + "\r"),
      Orders("LBP of a short answer", SetFlag(1), {"0", "OK"}, "MCCG\rMCCS01\r"),
      Gives("get LBP of a long answer", kGetFlag, {kLongFlags}, Flag(1), "MCCG\r"),
      Gives("get LBP of a short answer", kGetFlag, {"1"}, Flag(0), "MCCG\r"),
      Gives("only '1' is on", kGetPrebootFlag, {"21"}, Flag(0), "MCCG\r"),
  });
}

TEST_F(VpmTest, McuKeepsThresholdsOfBothSystemsApart) {
  struct Threshold {
    ROLU_STATUS (*set)(float);
    ROLU_STATUS (*get)(float*);
    float volts;
    float scale;
  };
  constexpr Threshold kThresholds[] = {
      {KAVO_ROLU_VPM_SetLBPThresholdFor12VSystem, KAVO_ROLU_VPM_GetLBPThresholdFor12VSystem, 11.7F, k12V},
      {KAVO_ROLU_VPM_SetPrebootThresholdFor12VSystem, KAVO_ROLU_VPM_GetPrebootThresholdFor12VSystem, 11.2F,
       k12V},
      {KAVO_ROLU_VPM_SetLBPThresholdFor24VSystem, KAVO_ROLU_VPM_GetLBPThresholdFor24VSystem, 23.4F, k24V},
      {KAVO_ROLU_VPM_SetPrebootThresholdFor24VSystem, KAVO_ROLU_VPM_GetPrebootThresholdFor24VSystem, 22.1F,
       k24V},
  };
  BringUp();
  for (const Threshold& threshold : kThresholds) EXPECT_EQ(threshold.set(threshold.volts), kDone);
  for (const Threshold& threshold : kThresholds) {
    EXPECT_EQ(threshold.set(90.0F), ROLU_STATUS_INVALID_PARAMETER) << "the MCU's range ends before";
    float volts = 0.0F;
    EXPECT_EQ(threshold.get(&volts), kDone);
    EXPECT_NEAR(volts, threshold.volts, threshold.scale * 0.5F);
  }
}

TEST_F(VpmTest, ChangeOfTheBatteryModeSwitchesTheProtectionsOff) {
  const auto expect_flags = [](char preboot, char low_battery) {
    char flag = 2;
    EXPECT_EQ(KAVO_ROLU_VPM_GetPrebootLBPStatus(&flag), kDone);
    EXPECT_EQ(flag, preboot);
    EXPECT_EQ(KAVO_ROLU_VPM_GetLBPStatus(&flag), kDone);
    EXPECT_EQ(flag, low_battery);
  };
  const auto expect_voltage = [](float volts, float scale) {
    float measured = 0.0F;
    EXPECT_EQ(KAVO_ROLU_VPM_GetCarBatteryVoltage(&measured), kDone);
    EXPECT_NEAR(measured, volts, scale * 0.5F);
  };
  BringUp();
  board().mcu().WithModel([](McuModel& mcu) {
    mcu.battery.mode = BatteryMode::k12V;
    mcu.battery.protection_enabled = {true, true};
    mcu.SetBatteryVolts(12.34);
  });
  expect_flags(1, 1);
  expect_voltage(12.34F, k12V);
  EXPECT_EQ(KAVO_ROLU_VPM_SetCurrentCarBatteryMode(CAR_BATTERY_MODE_24V), kDone);
  CAR_BATTERY_MODE mode = CAR_BATTERY_MODE_12V;
  EXPECT_EQ(KAVO_ROLU_VPM_GetCurrentCarBatteryMode(&mode), kDone);
  EXPECT_EQ(mode, CAR_BATTERY_MODE_24V);
  expect_flags(0, 0);
  expect_voltage(12.34F, k24V);
  EXPECT_EQ(KAVO_ROLU_VPM_SetLBPStatus(1), kDone);
  expect_flags(0, 1);
  EXPECT_EQ(KAVO_ROLU_VPM_SetPrebootLBPStatus(1), kDone);
  expect_flags(1, 1);
  EXPECT_EQ(KAVO_ROLU_VPM_SetLBPStatus(0), kDone);
  expect_flags(1, 0);
}

}  // namespace
}  // namespace rolu_test
