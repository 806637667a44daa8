// Unusual arguments: which are refused, in which state of the family, and which bytes reach the MCU.
#include <pthread.h>

#include <cmath>

#include "tests/oracle/vpm_calls.h"
#include "tests/support/call_table.h"

namespace rolu_test {
namespace {

constexpr ROLU_STATUS kDown = ROLU_STATUS_NOT_INITIALIZED;
constexpr ROLU_STATUS kBad = ROLU_STATUS_INVALID_PARAMETER;
constexpr ROLU_STATUS kNull = ROLU_STATUS_NULL_POINTER;
constexpr ROLU_STATUS kNotSupported = ROLU_STATUS_NOT_SUPPORTED;

Call SetClock(VPM_RTC_TIME time) {
  return With(KAVO_ROLU_VPM_SetRTCTime, time);
}
Call SetAlarm(int mode, VPM_ALARM_TIME time) {
  return [=](void*) { return KAVO_ROLU_VPM_SetAlarmTime(static_cast<ALARM_MODE>(mode), time); };
}

TEST_F(VpmTest, BadArgumentsAreRefusedBehindTheFamilysState) {
  const std::vector<NamedCall> calls = {
      {"battery mode -1", With(KAVO_ROLU_VPM_SetCurrentCarBatteryMode, -1)},
      {"battery mode 1", With(KAVO_ROLU_VPM_SetCurrentCarBatteryMode, 1)},
      {"battery mode 4", With(KAVO_ROLU_VPM_SetCurrentCarBatteryMode, 4)},
      {"ignition mode 0", With(KAVO_ROLU_VPM_SetIgnitionMode, 0)},
      {"ignition mode 3", With(KAVO_ROLU_VPM_SetIgnitionMode, 3)},
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
      {"firmware into nothing", OnNull(Into(KAVO_ROLU_VPM_GetFWVersion))},
  };
  Refuse(kDown, calls);
  BringUp();
  Refuse(kBad, calls);
}

TEST_F(VpmTest, OddArgumentsGoOutAsStated) {
  constexpr VPM_RTC_TIME kTime = {14, 7, 25, 5, 13, 45, 30};
  constexpr ROLU_STATUS kInvalid = ROLU_STATUS_VPM_INVALID_REPLY;
  const rolu_sim::Reply apart = rolu_sim::Reply::Line("OK").Then("OK\r\n", std::chrono::milliseconds(200));
  BringUp();
  Run({
      Orders("negative threshold", With(KAVO_ROLU_VPM_SetLBPThresholdFor12VSystem, -1.0F), {"OK"},
             "MCPS310000\r"),
      Orders("threshold that is no number", With(KAVO_ROLU_VPM_SetLBPThresholdFor12VSystem, NAN), {"OK"},
             "MCPS310000\r"),
      Orders("infinite threshold", With(KAVO_ROLU_VPM_SetLBPThresholdFor12VSystem, INFINITY), {"OK"},
             "MCPS31FFFF\r"),
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

// A call that registers an event. The event outlives the test.
Call Registers(ROLU_STATUS (*set)(void*)) {
  static pthread_cond_t event = PTHREAD_COND_INITIALIZER;
  return [set](void* output) { return set(output == nullptr ? nullptr : &event); };
}

TEST(Registrations, TestTheirPointerFirst) {
  const struct {
    size_t family;
    Call call;
    ROLU_STATUS while_up;
  } rows[] = {
      {0, Registers(KAVO_ROLU_VPM_SetIgnPowerOffEvent), ROLU_STATUS_SUCCESS},
      {0, Registers(KAVO_ROLU_VPM_SetLBPPowerOffEvent), ROLU_STATUS_SUCCESS},
      {2, Registers(KAVO_ROLU_GSENSOR_SetAlarmEvent), ROLU_STATUS_SUCCESS},
      {2, Into(KAVO_ROLU_GSENSOR_GetAlarmData), ROLU_STATUS_GSENSOR_NO_ALARM_DATA},
  };
  for (const auto& row : rows) {
    CallTable table(McuFamilies()[row.family].switches);
    const CallRow null = Fails("null", OnNull(row.call), {}, kNull);
    table.Run({null, Fails("while down", row.call, {}, kDown)});
    table.BringUp();
    table.Run({null, Fails("while up", row.call, {}, row.while_up)});
    EXPECT_EQ(table.family().deinitialize(), ROLU_STATUS_SUCCESS);
  }
}

TEST_F(WatchdogTest, OddArguments) {
  const auto get_range = [](bool minimum) -> Call {
    return [minimum](void* output) {
      auto* limit = static_cast<unsigned long*>(output);
      return KAVO_ROLU_WD_GetRange(minimum ? limit : nullptr, minimum ? nullptr : limit);
    };
  };
  const Call set_0 = With(KAVO_ROLU_WD_SetTime, 0);
  for (const ROLU_STATUS status_of_0 : {kDown, kBad}) {
    Run({Fails("time 0", set_0, {}, status_of_0),
         Fails("version", OnNull(Into(KAVO_ROLU_WD_GetLibVersion)), {}, kNotSupported),
         Fails("range without a minimum", get_range(false), {}, kNull),
         Fails("range without a maximum", get_range(true), {}, kNull)});
    if (status_of_0 == kDown) BringUp();
  }
  Run({Orders("smallest time", With(KAVO_ROLU_WD_SetTime, 1), {"OK"}, "WDTS0001\r"),
       Orders("largest time", With(KAVO_ROLU_WD_SetTime, 65535), {"OK"}, "WDTSFFFF\r"),
       Orders("off", WithByte(KAVO_ROLU_WD_Enabled, 0), {"OK"}, "WDTD\r", 0)});
  for (const unsigned int byte : {1U, 2U, 0x80U, 0xFFU})
    Run({Orders("any other byte", WithByte(KAVO_ROLU_WD_Enabled, byte), {"OK"}, "WDTE\r", 0)});
}

TEST_F(GSensorTest, OddArguments) {
  const auto set_resolution = [](int code) { return With(KAVO_ROLU_GSENSOR_SetResolution, code); };
  const auto set_alarm = [](int units) { return With(KAVO_ROLU_GSENSOR_SetAlarmThreshold, units); };
  const auto set_wakeup = [](int units) { return With(KAVO_ROLU_GSENSOR_SetWakeupThreshold, units); };
  const std::vector<NamedCall> bad = {
      {"resolution -1", set_resolution(-1)}, {"resolution 4", set_resolution(4)},
      {"alarm 1999", set_alarm(1999)},       {"alarm 15001", set_alarm(15001)},
      {"wake-up 62", set_wakeup(62)},        {"wake-up 16000", set_wakeup(16000)},
  };
  Refuse(kDown, bad);
  BringUp();
  Refuse(kBad, bad);
  Run({Orders("alarm 15000", set_alarm(15000), {"OK"}, "GSISF0\r"),
       Orders("alarm is cut", set_alarm(2062), {"OK"}, "GSIS20\r"),
       Orders("wake-up 15999", set_wakeup(15999), {"OK"}, "GSWSFF\r"),
       Orders("wake-up is cut", set_wakeup(124), {"OK"}, "GSWS01\r")});
  for (const unsigned int byte : {1U, 2U, 0x80U, 0xFFU})
    Run({Orders("on", WithByte(KAVO_ROLU_GSENSOR_AlarmEnabled, byte), {"OK"}, "ARGI01\r", 0),
         Orders("off", WithByte(KAVO_ROLU_GSENSOR_AlarmEnabled, 0), {"OK"}, "ARGI00\r", 0)});
}

TEST_F(GSensorTest, AlarmIsSwitchedOnOnce) {
  constexpr ROLU_STATUS kError = ROLU_STATUS_VPM_ERROR_REPLY;
  const Call on = With(KAVO_ROLU_GSENSOR_AlarmEnabled, true);
  const Call off = With(KAVO_ROLU_GSENSOR_AlarmEnabled, false);
  const Call down = Plain(KAVO_ROLU_GSENSOR_Deinitialize);
  const CallRow on_already = Fails("on already", on, {}, ROLU_STATUS_GSENSOR_ALARM_ALREADY_ENABLED);
  BringUp();
  Run({
      Fails("refused", on, {"ERR-G01"}, kError, "ARGI01\r"),
      Orders("on", on, {"OK"}, "ARGI01\r", 0),
      on_already,
      Fails("off refused", off, {"ERR-G01"}, kError, "ARGI00\r"),
      on_already,
      Orders("off", off, {"OK"}, "ARGI00\r", 0),
      Orders("on after off", on, {"OK"}, "ARGI01\r", 0),
      // The sensor stays on, so the family stays up.
      Fails("down refused", down, {"OK", "ERR-M08"}, kBad, "ARGI00\rGSF\r"),
      Orders("on in the family that is up", on, {"OK"}, "ARGI01\r", 0),
      // The MCU refuses to switch the alarm off. The family goes down, but remembers that the alarm is on.
      Orders("down", down, {"ERR-G01", "OK"}, "ARGI00\rGSF\r", 0),
      Orders("up", With(KAVO_ROLU_GSENSOR_Initialize, 255), {}, "Hello\rGSO\r", 0),
      on_already,
  });
}

Call SetPeripheral(int type, int state) {
  return [=](void*) {
    return KAVO_ROLU_PERIPHERALCTRL_SetPeripheralControl(static_cast<PERIPHERAL_TYPE>(type),
                                                         static_cast<char>(state));
  };
}
Call GetPeripheral(int type) {
  return [=](void* state) {
    return KAVO_ROLU_PERIPHERALCTRL_GetPeripheralControl(static_cast<PERIPHERAL_TYPE>(type),
                                                         static_cast<char*>(state));
  };
}

TEST_F(PeripheralTest, RearViewIsNotProvidedAndTheStateComesFirst) {
  // The board does not have these devices.
  const Call get_source = Into(KAVO_ROLU_PERIPHERALCTRL_GetRearViewSource);
  const std::vector<NamedCall> rear_view = {
      {"set source", With(KAVO_ROLU_PERIPHERALCTRL_SetRearViewSource, 1)},
      {"get source", get_source},
      {"get source, null", OnNull(get_source)},
      {"set automatic", With(KAVO_ROLU_PERIPHERALCTRL_SetAutoRearView, 1)},
      {"get automatic", Into(KAVO_ROLU_PERIPHERALCTRL_GetAutoRearView)},
  };
  const NamedCall version = {"version", OnNull(Into(KAVO_ROLU_PERIPHERALCTRL_GetLibVersion))};
  Refuse(kDown, rear_view);
  Refuse(kDown, {{"set 10", SetPeripheral(10, 1)}, {"get, null", OnNull(GetPeripheral(0))}});
  Refuse(kNotSupported, {version});
  BringUp();
  Refuse(kNotSupported, rear_view);
  Refuse(kNotSupported, {version});
  Run({Orders("a state goes out as it is", SetPeripheral(0, 12), {"OK"}, "MCS012\r", 500),
       Orders("as unsigned", SetPeripheral(0, -1), {"OK"}, "MCS0255\r", 500)});
}

TEST_F(PeripheralTest, TypesAreJudgedBeforeAnythingHappens) {
  BringUp();
  board().devices().ClearAccesses();
  for (const int type : {3, 9, 10, -1}) {
    const std::string name = "type " + std::to_string(type);
    const ROLU_STATUS status_of_set = type == 10 ? kBad : kNotSupported;
    Run({Fails(name + ", set", SetPeripheral(type, 1), {}, status_of_set),
         Fails(name + ", get", GetPeripheral(type), {}, kNotSupported),
         Fails(name + ", null", OnNull(GetPeripheral(type)), {}, kNotSupported)});
  }
  for (const int type : {0, 1, 2}) Run({Fails("null", OnNull(GetPeripheral(type)), {}, kBad)});
  EXPECT_TRUE(board().devices().Accesses().empty());
}

}  // namespace
}  // namespace rolu_test
