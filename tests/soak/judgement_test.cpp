#include "soak/judgement.h"

#include <gtest/gtest.h>

#include "soak/operations.h"
#include "soak/process_usage.h"

namespace rolu_soak {
namespace {

constexpr std::nullopt_t kNoLine = std::nullopt;

CallFacts Facts(const char* row, ROLU_STATUS status, std::vector<Exchange> exchanges) {
  CallFacts facts;
  facts.row = OperationOf(row).row;
  facts.status = status;
  facts.exchanges = std::move(exchanges);
  return facts;
}

template <typename Value>
CallFacts Giving(Value value, CallFacts facts) {
  facts.output = rolu_test::MemoryWith(rolu_test::Written(value));
  return facts;
}

CallFacts OfDownFamily(CallFacts facts) {
  facts.family_was_up = false;
  return facts;
}

CallFacts OnDeadPort(CallFacts facts) {
  facts.port_was_dead = true;
  return facts;
}

constexpr ROLU_STATUS kDone = ROLU_STATUS_SUCCESS;
constexpr ROLU_STATUS kNoReply = ROLU_STATUS_VPM_NO_REPLY;
constexpr ROLU_STATUS kRefused = ROLU_STATUS_INVALID_PARAMETER;
constexpr ROLU_STATUS kError = ROLU_STATUS_VPM_ERROR_REPLY;
constexpr ROLU_STATUS kNotUp = ROLU_STATUS_NOT_INITIALIZED;

constexpr char kGetTime[] = "WD_GetTime";
constexpr char kSetTime[] = "WD_SetTime";
constexpr char kGetVoltage[] = "VPM_GetCarBatteryVoltage 12V";
constexpr char kDown[] = "GSENSOR_Deinitialize";
constexpr char kUp[] = "VPM_Initialize";

CallFacts Time(unsigned short time, const char* answer) {
  return Giving(time, Facts(kGetTime, kDone, {{"WDTG", answer}}));
}

TEST(Judgement, AllowsWhatTheMcuGaveCauseForOnly) {
  const struct {
    const char* what;
    CallFacts facts;
    bool allowed;
  } rows[] = {
      {"answered", Time(300, "012C"), true},
      {"answered with another's answer", Time(300, "012D"), false},
      {"no value", Facts(kGetTime, kDone, {{"WDTG", "012C"}}), false},
      {"no reply without a cause", Facts(kGetTime, kNoReply, {{"WDTG", "012C"}}), false},
      {"no command", Giving(static_cast<unsigned short>(0), Facts(kGetTime, kDone, {})), false},
      {"a value in spite of silence",
       Giving(static_cast<unsigned short>(300), Facts(kGetTime, kDone, {{"WDTG", kNoLine}})), false},
      {"silence", Facts(kGetTime, kNoReply, {{"WDTG", kNoLine}}), true},
      {"refused", Facts(kGetTime, kRefused, {{"WDTG", "ERR-M08"}}), true},
      {"the other error", Facts(kGetTime, kError, {{"WDTG", "ERR-M08"}}), false},
      {"error without a cause", Facts(kGetTime, kError, {{"WDTG", "012C"}}), false},
      {"a value after an error", Giving(1, Facts(kGetTime, kError, {{"WDTG", "ERR-W02"}})), false},
      {"a garbled answer", Time(1, "01}C"), true},
      {"not any value of a garbled answer", Time(300, "01}C"), false},
      {"an order", Facts(kSetTime, kDone, {{"WDTS012C", "OK"}}), true},
      {"another order", Facts(kSetTime, kDone, {{"WDTS012D", "OK"}}), false},
      {"twice the order", Facts(kSetTime, kDone, {{"WDTS012C", "OK"}, {"WDTS012C", "OK"}}), false},
      {"first of two fails", Facts(kGetVoltage, kNoReply, {{"MCBG", kNoLine}}), true},
      {"second of two fails", Facts(kGetVoltage, kError, {{"MCBG", "03"}, {"MCVG", "ERR-G01"}}), true},
      {"asked in spite of the first", Facts(kGetVoltage, kNoReply, {{"MCBG", kNoLine}, {"MCVG", "0333"}}),
       false},
      {"alarm off without an answer", Facts(kDown, kDone, {{"ARGI00", kNoLine}, {"GSF", "OK"}}), true},
      {"sensor off without an answer", Facts(kDown, kDone, {{"ARGI00", "OK"}, {"GSF", kNoLine}}), false},
      {"scales without an answer",
       Facts(kUp, kDone,
             {{"ATF0", "*"}, {"MCVU2", kNoLine}, {"MCVU3", kNoLine}, {"MCPR3", "0"}, {"MCPR2", "0"}}),
       true},
      {"an alarm that is on", Facts("GSENSOR_AlarmEnabled on", ROLU_STATUS_GSENSOR_ALARM_ALREADY_ENABLED, {}),
       true},
      {"an alarm that is on, but ordered",
       Facts("GSENSOR_AlarmEnabled on", ROLU_STATUS_GSENSOR_ALARM_ALREADY_ENABLED, {{"ARGI01", "OK"}}),
       false},
      {"down", OfDownFamily(Facts(kGetTime, kNotUp, {})), true},
      {"down, but asked", OfDownFamily(Facts(kGetTime, kNotUp, {{"WDTG", "012C"}})), false},
      {"down, but written", OfDownFamily(Giving(1, Facts(kGetTime, kNotUp, {}))), false},
      {"up, but refused", Facts(kGetTime, kNotUp, {}), false},
      {"dead port", OnDeadPort(Facts(kGetTime, kNoReply, {})), true},
      {"dead port, another's answer", OnDeadPort(Time(300, "012D")), false},
  };
  for (const auto& row : rows) EXPECT_EQ(FaultIn(row.facts).text.empty(), row.allowed) << row.what;
}

TEST(Judgement, WaitsForAProcessorExplainWhatWasMissedOnly) {
  const struct {
    const char* what;
    CallFacts facts;
    std::chrono::nanoseconds explained_by;
  } rows[] = {
      {"no reply", Facts(kGetTime, kNoReply, {{"WDTG", "012C"}}), kStarved},
      {"no reply before a command went out", Facts(kGetTime, kNoReply, {}), kStarved},
      {"no reply to the first of two", Facts(kGetVoltage, kNoReply, {{"MCBG", "03"}}), kStarved},
      {"no reply in place of an error", Facts(kGetTime, kNoReply, {{"WDTG", "ERR-W02"}}), kStarved},
      {"no link", Facts("WD_Initialize", ROLU_STATUS_VPM_OPEN_FAILED, {}), kStarved},
      {"another's answer", Time(300, "012D"), Fault::kUnexplained},
      {"error without a cause", Facts(kGetTime, kError, {{"WDTG", "012C"}}), Fault::kUnexplained},
      {"a value in spite of silence", Facts(kGetTime, kDone, {{"WDTG", kNoLine}}), Fault::kUnexplained},
      {"no reply of a family that is down", OfDownFamily(Facts(kGetTime, kNoReply, {})), Fault::kUnexplained},
      {"up, but refused", Facts(kGetTime, kNotUp, {}), Fault::kUnexplained},
  };
  for (const auto& row : rows) {
    const Fault fault = FaultIn(row.facts);
    EXPECT_NE(fault.text, "") << row.what;
    EXPECT_EQ(fault.explained_by, row.explained_by) << row.what;
  }
}

TEST(Judgement, OneInAThousandCallsMayBeExcusedAndOneOfEachThread) {
  EXPECT_EQ(ExcusableCalls(0), kLanes);
  EXPECT_EQ(ExcusableCalls(8999), kLanes);
  EXPECT_EQ(ExcusableCalls(80000), 80U);
}

}  // namespace
}  // namespace rolu_soak
