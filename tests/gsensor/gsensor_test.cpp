#include "kavo_rolu.h"
#include "tests/support/call_table.h"

namespace rolu_test {
namespace {

constexpr ROLU_STATUS kDone = ROLU_STATUS_SUCCESS;
constexpr ROLU_STATUS kBad = ROLU_STATUS_INVALID_PARAMETER;
constexpr ROLU_STATUS kDown = ROLU_STATUS_NOT_INITIALIZED;
constexpr ROLU_STATUS kNull = ROLU_STATUS_NULL_POINTER;

class GSensorTest : public CallTableTest {
 protected:
  GSensorTest()
      : CallTableTest({[] { return KAVO_ROLU_GSENSOR_Initialize(0); }, KAVO_ROLU_GSENSOR_Deinitialize}) {}
};

const Call kGetResolution = Into(KAVO_ROLU_GSENSOR_GetResolution);
const Call kGetAlarmData = Into(KAVO_ROLU_GSENSOR_GetAlarmData);

Call SetResolution(int code) {
  return With(KAVO_ROLU_GSENSOR_SetResolution, code);
}
Call SwitchAlarm(bool on) {
  return With(KAVO_ROLU_GSENSOR_AlarmEnabled, on);
}
Call SetAlarmThreshold(int threshold) {
  return With(KAVO_ROLU_GSENSOR_SetAlarmThreshold, threshold);
}
Call SetWakeupThreshold(int threshold) {
  return With(KAVO_ROLU_GSENSOR_SetWakeupThreshold, threshold);
}
Bytes Number(int32_t number) {
  return Written(number);
}

TEST_F(GSensorTest, AlarmDataAndItsEventNeedAPointerAndThenTheFamily) {
  const Call set_event = Into(KAVO_ROLU_GSENSOR_SetAlarmEvent);
  Run({{"alarm data", kGetAlarmData, {}, kDown},
       {"alarm data, null", kGetAlarmData, {}, kNull, {}, "", 0, true},
       {"event", set_event, {}, kDown},
       {"event, null", set_event, {}, kNull, {}, "", 0, true},
       {"bad resolution while down", SetResolution(4), {}, kDown}});
  BringUp();
  Run({{"no alarm data", kGetAlarmData, {}, ROLU_STATUS_GSENSOR_NO_ALARM_DATA},
       {"alarm data, null", kGetAlarmData, {}, kNull, {}, "", 0, true},
       {"event, null", set_event, {}, kNull, {}, "", 0, true}});
}

TEST_F(GSensorTest, OddArguments) {
  BringUp();
  Run({
      {"resolution -1", SetResolution(-1), {}, kBad},
      {"resolution 4", SetResolution(4), {}, kBad},
      {"alarm 1999", SetAlarmThreshold(1999), {}, kBad},
      {"alarm 15001", SetAlarmThreshold(15001), {}, kBad},
      {"alarm 15000", SetAlarmThreshold(15000), {"OK"}, kDone, {}, "GSISF0\r", 50},
      {"alarm is cut", SetAlarmThreshold(2062), {"OK"}, kDone, {}, "GSIS20\r", 50},
      {"wake-up 62", SetWakeupThreshold(62), {}, kBad},
      {"wake-up 16000", SetWakeupThreshold(16000), {}, kBad},
      {"wake-up 15999", SetWakeupThreshold(15999), {"OK"}, kDone, {}, "GSWSFF\r", 50},
      {"wake-up is cut", SetWakeupThreshold(124), {"OK"}, kDone, {}, "GSWS01\r", 50},
  });
}

TEST_F(GSensorTest, AlarmIsSwitchedOnOnce) {
  constexpr ROLU_STATUS kAlready = ROLU_STATUS_GSENSOR_ALARM_ALREADY_ENABLED;
  BringUp();
  Run({
      {"refused", SwitchAlarm(true), {"ERR-G01"}, ROLU_STATUS_VPM_ERROR_REPLY, {}, "ARGI01\r"},
      {"on", SwitchAlarm(true), {"OK"}, kDone, {}, "ARGI01\r"},
      {"on again", SwitchAlarm(true), {}, kAlready},
      {"off refused", SwitchAlarm(false), {"ERR-G01"}, ROLU_STATUS_VPM_ERROR_REPLY, {}, "ARGI00\r"},
      {"still on", SwitchAlarm(true), {}, kAlready},
      {"off", SwitchAlarm(false), {"OK"}, kDone, {}, "ARGI00\r"},
      {"on after off", SwitchAlarm(true), {"OK"}, kDone, {}, "ARGI01\r"},
      // The MCU does not take the switching off: the family goes down, the memory stays.
      {"down", Plain(KAVO_ROLU_GSENSOR_Deinitialize), {"ERR-G01", "OK"}, kDone, {}, "ARGI00\rGSF\r"},
      {"up", With(KAVO_ROLU_GSENSOR_Initialize, 255), {}, kDone, {}, "Hello\rGSO\r"},
      {"on after all", SwitchAlarm(true), {}, kAlready},
  });
}

TEST_F(GSensorTest, FamilyStaysUpWhenTheSensorStaysOn) {
  const Call down = Plain(KAVO_ROLU_GSENSOR_Deinitialize);
  Run({
      {"up whatever the answers",
       With(KAVO_ROLU_GSENSOR_Initialize, 0),
       {"ERR-C01", "ERR-G02"},
       kDone,
       {},
       "Hello\rGSO\r"},
      {"up again", With(KAVO_ROLU_GSENSOR_Initialize, 0), {}, ROLU_STATUS_ALREADY_INITIALIZED},
      {"refused", down, {"OK", "ERR-M08"}, kBad, {}, "ARGI00\rGSF\r"},
      {"still up", kGetResolution, {"01"}, kDone, Number(1), "GSRG\r"},
      {"down", down, {"OK", "OK"}, kDone, {}, "ARGI00\rGSF\r"},
      {"down again", down, {}, kDown},
  });
}

TEST_F(GSensorTest, AnyByteButZeroSwitchesTheAlarmOn) {
  BringUp();
  for (const unsigned int byte : {1U, 2U, 0x80U, 0xFFU}) {
    Run({Orders("on", WithByte(KAVO_ROLU_GSENSOR_AlarmEnabled, byte), {"OK"}, "ARGI01\r", 0),
         Orders("off", WithByte(KAVO_ROLU_GSENSOR_AlarmEnabled, 0), {"OK"}, "ARGI00\r", 0)});
  }
}

}  // namespace
}  // namespace rolu_test
