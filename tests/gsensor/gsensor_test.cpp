#include "kavo_rolu.h"
#include "tests/oracle/operations.h"
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

const Call kGetData = Into(KAVO_ROLU_GSENSOR_GetData);
const Call kGetResolution = Into(KAVO_ROLU_GSENSOR_GetResolution);
const Call kGetAlarmThreshold = Into(KAVO_ROLU_GSENSOR_GetAlarmThreshold);
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
Bytes Sample(int32_t x, int32_t y, int32_t z) {
  return Written(x, y, z);
}
Bytes Number(int32_t number) {
  return Written(number);
}

TEST_F(GSensorTest, DownFamilyRefusesEveryCall) {
  Run(Refused(GSensorOperations(), kDown));
  Run(RefusedForNullOutput(GSensorOperations(), kDown));
  Run({{"down", Plain(KAVO_ROLU_GSENSOR_Deinitialize), {}, kDown},
       {"bad resolution while down", SetResolution(4), {}, kDown},
       {"alarm data", kGetAlarmData, {}, kDown},
       {"alarm data, null", kGetAlarmData, {}, kNull, {}, "", 0, true},
       {"event", Into(KAVO_ROLU_GSENSOR_SetAlarmEvent), {}, kDown},
       {"event, null", With(KAVO_ROLU_GSENSOR_SetAlarmEvent, nullptr), {}, kNull},
       {"version", With(KAVO_ROLU_GSENSOR_GetLibVersion, nullptr), {}, ROLU_STATUS_NOT_SUPPORTED}});
}

TEST_F(GSensorTest, CallsSayWhatTheyMean) {
  BringUp();
  Run(GSensorOperations());
  Run(RefusedForNullOutput(GSensorOperations(), kNull));
  Run({{"alarm data, null", kGetAlarmData, {}, kNull, {}, "", 0, true},
       {"event, null", With(KAVO_ROLU_GSENSOR_SetAlarmEvent, nullptr), {}, kNull},
       {"no alarm data", kGetAlarmData, {}, ROLU_STATUS_GSENSOR_NO_ALARM_DATA}});
}

TEST_F(GSensorTest, OddValuesAndAnswers) {
  constexpr ROLU_STATUS kInvalid = ROLU_STATUS_GSENSOR_INVALID_REPLY;
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
      {"threshold 1", kGetAlarmThreshold, {"1"}, kDone, Number(63), "GSIG\r"},
      {"threshold of two digits", kGetAlarmThreshold, {"F0A"}, kDone, Number(15000), "GSIG\r"},
      {"a sign", kGetAlarmThreshold, {"-1"}, kDone, Number(15938), "GSIG\r"},
      {"no threshold", kGetAlarmThreshold, {"OK"}, kInvalid, {}, "GSIG\r"},
      {"resolution is not judged", kGetResolution, {"FF"}, kDone, Number(255), "GSRG\r"},
      {"resolution with a sign", kGetResolution, {"-5"}, kDone, Number(251), "GSRG\r"},
      {"no resolution", kGetResolution, {"?"}, kInvalid, {}, "GSRG\r"},
      {"towards zero", kGetData, {"x0002FFFEFF00"}, kDone, Sample(8, -7, -999), "GSV\r"},
      {"widest", kGetData, {"V7FFF80000000"}, kDone, Sample(127996, -127999, 0), "GSV\r"},
      {"no sample", kGetData, {"I000000000000"}, ROLU_STATUS_GSENSOR_DATA_UNAVAILABLE, {}, "GSV\r"},
      {"two axes", kGetData, {"V00010002"}, kInvalid, {}, "GSV\r"},
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
