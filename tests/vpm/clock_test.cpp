#include "kavo_rolu.h"
#include "tests/oracle/operations.h"
#include "tests/oracle/vpm_calls.h"
#include "tests/vpm/vpm_family.h"

namespace rolu_test {
namespace {

using rolu_sim::Reply;

constexpr ROLU_STATUS kDone = ROLU_STATUS_SUCCESS;
constexpr ROLU_STATUS kBad = ROLU_STATUS_INVALID_PARAMETER;

constexpr VPM_RTC_TIME kTime = {14, 7, 25, 5, 13, 45, 30};
constexpr char kSetWire[] = "RTCS0E0719050D2D1E\r";

Call SetClock(VPM_RTC_TIME time) {
  return With(KAVO_ROLU_VPM_SetRTCTime, time);
}
const Call kGetClock = Into(KAVO_ROLU_VPM_GetRTCTime);

Call SetAlarm(int mode, VPM_ALARM_TIME time) {
  return [=](void*) { return KAVO_ROLU_VPM_SetAlarmTime(static_cast<ALARM_MODE>(mode), time); };
}

Bytes AlarmIs(ALARM_MODE mode, VPM_ALARM_TIME time) {
  return Written(mode, time);
}

TEST_F(VpmTest, DownFamilyRefusesEveryClockCall) {
  Run(Refused(ClockOperations(), ROLU_STATUS_NOT_INITIALIZED));
  Run(RefusedForNullOutput(ClockOperations(), ROLU_STATUS_NOT_INITIALIZED));
  Run({{"bad clock while down", SetClock({}), {}, ROLU_STATUS_NOT_INITIALIZED}});
}

TEST_F(VpmTest, ClockCallsSayWhatTheyMean) {
  BringUp();
  Run(ClockOperations());
  Run(RefusedForNullOutput(ClockOperations(), kBad));
}

TEST_F(VpmTest, SettingTheClockTakesTwoLines) {
  BringUp();
  Run({
      {"apart",
       SetClock(kTime),
       {Reply::Line("OK").Then("OK\r\n", std::chrono::milliseconds(200))},
       kDone,
       {},
       kSetWire,
       250},
      {"the first is not looked at",
       SetClock(kTime),
       {Reply::Lines({"ERR-M08", "OK"})},
       kDone,
       {},
       kSetWire,
       50},
      {"the second refuses", SetClock(kTime), {Reply::Lines({"OK", "ERR-M08"})}, kBad, {}, kSetWire, 50},
      {"the second fails",
       SetClock(kTime),
       {Reply::Lines({"OK", "ERR-T01"})},
       ROLU_STATUS_VPM_ERROR_REPLY,
       {},
       kSetWire,
       50},
      {"the next command has its own answer", kGetClock, {"0E0719050D2D1E"}, kDone, Written(kTime), "RTCG\r"},
  });
}

TEST_F(VpmTest, SettingTheClockWithoutASecondLineIsNoReply) {
  BringUp();
  Run({{"one line", SetClock(kTime), {"OK"}, ROLU_STATUS_VPM_NO_REPLY, {}, kSetWire, 3000},
       {"after it", kGetClock, {"0E0719050D2D1E"}, kDone, Written(kTime), "RTCG\r"}});
}

TEST_F(VpmTest, OddTimesAndAnswers) {
  BringUp();
  Run({
      {"short clock", kGetClock, {"0E07"}, kDone, Written(VPM_RTC_TIME{14, 7, 0, 0, 0, 0, 0}), "RTCG\r"},
      {"no clock", kGetClock, {"OK"}, kDone, Written(VPM_RTC_TIME{}), "RTCG\r"},
      {"clock is not judged",
       kGetClock,
       {"FFFFFFFFFFFFFF"},
       kDone,
       Written(VPM_RTC_TIME{255, 255, 255, 255, 255, 255, 255}),
       "RTCG\r"},
      {"hourly", SetAlarm(0, {0, 0, 59}), {"OK"}, kDone, {}, "RTAS00009B\r", 150},
      {"weekly", SetAlarm(2, {0, 7, 0}), {"OK"}, kDone, {}, "RTAS01E101\r", 150},
      {"noon is afternoon", SetAlarm(0, {6, 12, 0}), {"OK"}, kDone, {}, "RTAS604A01\r", 150},
      {"latest", SetAlarm(1, {6, 23, 59}), {"OK"}, kDone, {}, "RTAS60C79B\r", 150},
      {"mode none", SetAlarm(-1, {0, 0, 0}), {}, kBad},
      {"mode 3", SetAlarm(3, {0, 0, 0}), {}, kBad},
      {"weekday 7", SetAlarm(2, {7, 0, 0}), {}, kBad},
      {"hour 24", SetAlarm(2, {0, 24, 0}), {}, kBad},
      {"minute 60", SetAlarm(2, {0, 0, 60}), {}, kBad},
      {"no alarm", GetAlarm, {"000000"}, kDone, AlarmIs(ALARM_MODE_NONE, {0, 0, 0}), "RTAG\r"},
      {"weekly alarm", GetAlarm, {"01E101"}, kDone, AlarmIs(ALARM_MODE_WEEKLY, {0, 7, 0}), "RTAG\r"},
      {"hourly alarm", GetAlarm, {"00009B"}, kDone, AlarmIs(ALARM_MODE_HOURLY, {0, 0, 59}), "RTAG\r"},
      {"short alarm", GetAlarm, {"A0C"}, kDone, AlarmIs(ALARM_MODE_NONE, {5, 30, 0}), "RTAG\r"},
  });
}

}  // namespace
}  // namespace rolu_test
