// Odd arguments of the power manager's calls: what is refused, and what goes out.
#include <pthread.h>

#include <cmath>

#include "kavo_rolu.h"
#include "tests/oracle/vpm_calls.h"
#include "tests/vpm/vpm_family.h"

namespace rolu_test {
namespace {

Call SetThreshold(float volts) {
  return With(KAVO_ROLU_VPM_SetLBPThresholdFor12VSystem, volts);
}
Call SetBatteryMode(int mode) {
  return With(KAVO_ROLU_VPM_SetCurrentCarBatteryMode, mode);
}
Call SetIgnitionMode(int mode) {
  return With(KAVO_ROLU_VPM_SetIgnitionMode, mode);
}
Call SetClock(VPM_RTC_TIME time) {
  return With(KAVO_ROLU_VPM_SetRTCTime, time);
}
Call SetAlarm(int mode, VPM_ALARM_TIME time) {
  return [=](void*) { return KAVO_ROLU_VPM_SetAlarmTime(static_cast<ALARM_MODE>(mode), time); };
}

const struct {
  const char* name;
  Call call;
} kBadCalls[] = {
    {"battery mode -1", SetBatteryMode(-1)},
    {"battery mode 1", SetBatteryMode(1)},
    {"battery mode 4", SetBatteryMode(4)},
    {"ignition mode 0", SetIgnitionMode(0)},
    {"ignition mode 3", SetIgnitionMode(3)},
    {"no low-battery delay", With(KAVO_ROLU_VPM_SetLBPLowDelay, 0)},
    {"no delay before the force shutdown", With(KAVO_ROLU_VPM_SetForceShutDownDelay, 0)},
    {"shutdown source -1", SetShutdown(-1, 1)},
    {"shutdown source 2", SetShutdown(2, 1)},
    {"get shutdown source -1", GetShutdown(-1)},
    {"get shutdown source 2", GetShutdown(2)},
    {"no wake-up source", SetWakeup(-1, 1)},
    {"get no wake-up source", GetWakeup(-1)},
    {"month 13", SetClock({14, 13, 1, 0, 0, 0, 0})},
    {"alarm mode none", SetAlarm(-1, {0, 0, 0})},
    {"alarm mode 3", SetAlarm(3, {0, 0, 0})},
    {"weekday 7", SetAlarm(2, {7, 0, 0})},
    {"hour 24", SetAlarm(2, {0, 24, 0})},
    {"minute 60", SetAlarm(2, {0, 0, 60})},
};

TEST_F(VpmTest, BadArgumentsAreRefusedBehindTheFamilysState) {
  for (const auto& bad : kBadCalls) Run({Fails(bad.name, bad.call, {}, ROLU_STATUS_NOT_INITIALIZED)});
  BringUp();
  for (const auto& bad : kBadCalls) Run({Fails(bad.name, bad.call, {}, ROLU_STATUS_INVALID_PARAMETER)});
}

TEST_F(VpmTest, OddArgumentsGoOutAsStated) {
  constexpr VPM_RTC_TIME kTime = {14, 7, 25, 5, 13, 45, 30};
  constexpr ROLU_STATUS kInvalid = ROLU_STATUS_VPM_INVALID_REPLY;
  const rolu_sim::Reply apart = rolu_sim::Reply::Line("OK").Then("OK\r\n", std::chrono::milliseconds(200));
  BringUp();
  Run({
      Orders("negative threshold", SetThreshold(-1.0F), {"OK"}, "MCPS310000\r"),
      Orders("threshold that is no number", SetThreshold(NAN), {"OK"}, "MCPS310000\r"),
      Orders("infinite threshold", SetThreshold(INFINITY), {"OK"}, "MCPS31FFFF\r"),
      Orders("protection on as a negative char", With(KAVO_ROLU_VPM_SetLBPStatus, -1), {"00", "OK"},
             "MCCG\rMCCS01\r"),
      Orders("protection off", With(KAVO_ROLU_VPM_SetLBPStatus, 0), {"01", "OK"}, "MCCG\rMCCS00\r"),
      Orders("pre-boot protection on", With(KAVO_ROLU_VPM_SetPrebootLBPStatus, 1), {"01", "OK"},
             "MCCG\rMCCS11\r"),
      Orders("AT mode of two digits", With(KAVO_ROLU_VPM_SetATMode, 12), {"01", "OK"}, "MCAG\rMCAS012\r"),
      Orders("mode as unsigned", With(KAVO_ROLU_VPM_SetKeepAliveMode, -1), {"01", "OK"}, "MCAG\rMCAS2551\r"),
      Orders("longest delay", With(KAVO_ROLU_VPM_SetIgnOnDelay, 65535), {"OK"}, "MCUS2FFFF\r"),
      Orders("any flag is on", With(KAVO_ROLU_VPM_SetForceShutDown, -3), {"OK"}, "MSSS1\r"),
      Orders("state as it is", SetWakeup(2, 7), {"OK"}, "WKMS27\r"),
      Orders("state as unsigned", SetWakeup(2, -1), {"OK"}, "WKMS2255\r"),
      Orders("alarm as unsigned", With(KAVO_ROLU_VPM_SetAlarmActive, -2), {"OK"}, "WKMS6254\r"),
      Orders("source without a name", SetWakeup(-2, 1), {"OK"}, "WKMS-21\r"),
      Fails("source before the line", GetWakeup(-2), {"0000001"}, kInvalid, "WKMG\r"),
      Fails("source far beyond the line", GetWakeup(2000000000), {"000000"}, kInvalid, "WKMG\r"),
      Orders("hourly alarm", SetAlarm(0, {0, 0, 59}), {"OK"}, "RTAS00009B\r", 150),
      Orders("weekly alarm", SetAlarm(2, {0, 7, 0}), {"OK"}, "RTAS01E101\r", 150),
      Orders("noon is afternoon", SetAlarm(0, {6, 12, 0}), {"OK"}, "RTAS604A01\r", 150),
      Orders("latest alarm", SetAlarm(1, {6, 23, 59}), {"OK"}, "RTAS60C79B\r", 150),
      Orders("clock that is answered in two parts", SetClock(kTime), {apart}, "RTCS0E0719050D2D1E\r", 250),
  });
}

TEST_F(VpmTest, EventRegistrationTestsItsPointerFirst) {
  static pthread_cond_t event = PTHREAD_COND_INITIALIZER;
  for (ROLU_STATUS (*set)(void*) : {KAVO_ROLU_VPM_SetIgnPowerOffEvent, KAVO_ROLU_VPM_SetLBPPowerOffEvent}) {
    Run({{"null while down", With(set, nullptr), {}, ROLU_STATUS_NULL_POINTER},
         {"while down", With(set, &event), {}, ROLU_STATUS_NOT_INITIALIZED}});
    BringUp();
    Run({{"null while up", With(set, nullptr), {}, ROLU_STATUS_NULL_POINTER},
         {"while up", With(set, &event), {}, ROLU_STATUS_SUCCESS}});
    EXPECT_EQ(KAVO_ROLU_VPM_Deinitialize(), ROLU_STATUS_SUCCESS);
  }
}

}  // namespace
}  // namespace rolu_test
