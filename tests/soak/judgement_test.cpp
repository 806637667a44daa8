#include "soak/judgement.h"

#include <gtest/gtest.h>

#include "soak/excuses.h"
#include "soak/processor_waits.h"

namespace rolu_soak {
namespace {

Exchange Of(const char* command, Strike strike = Strike::kNone, ROLU_STATUS error = ROLU_STATUS_SUCCESS) {
  Exchange exchange;
  exchange.code = FindWireCode(command);
  exchange.command = command;
  exchange.strike = strike;
  exchange.error = error;
  return exchange;
}

CallFacts Facts(ROLU_STATUS status, std::vector<Exchange> exchanges) {
  CallFacts facts;
  facts.status = status;
  facts.exchanges = std::move(exchanges);
  return facts;
}

CallFacts WithWrongValue(CallFacts facts) {
  facts.right = false;
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

CallFacts Ignoring(std::string_view code, CallFacts facts) {
  facts.ignored_code = code;
  return facts;
}

constexpr ROLU_STATUS kDone = ROLU_STATUS_SUCCESS;
constexpr ROLU_STATUS kNoReply = ROLU_STATUS_VPM_NO_REPLY;
constexpr ROLU_STATUS kRefused = ROLU_STATUS_INVALID_PARAMETER;
constexpr ROLU_STATUS kError = ROLU_STATUS_VPM_ERROR_REPLY;

TEST(Judgement, AllowsWhatTheFaultsOfTheCallExplain) {
  const struct {
    const char* what;
    CallFacts facts;
    bool allowed;
  } rows[] = {
      {"answered", Facts(kDone, {Of("WDTG")}), true},
      {"answered with another's answer", WithWrongValue(Facts(kDone, {Of("WDTG")})), false},
      {"no reply without a fault", Facts(kNoReply, {Of("WDTG")}), false},
      {"no reply without a command", Facts(kNoReply, {}), false},
      {"error without a fault", Facts(kError, {Of("WDTG")}), false},
      {"silence", Facts(kNoReply, {Of("WDTG", Strike::kSilence)}), true},
      {"success in spite of silence", Facts(kDone, {Of("WDTG", Strike::kSilence)}), false},
      {"late", Facts(kNoReply, {Of("WDTG", Strike::kLate)}), true},
      {"a line too long is no reply", Facts(kDone, {Of("WDTG", Strike::kLongLine)}), false},
      {"delay", Facts(kDone, {Of("WDTG", Strike::kDelay)}), true},
      {"delay is no silence", Facts(kNoReply, {Of("WDTG", Strike::kDelay)}), false},
      {"refused", Facts(kRefused, {Of("WDTG", Strike::kError, kRefused)}), true},
      {"the other error", Facts(kError, {Of("WDTG", Strike::kError, kRefused)}), false},
      {"first of two fails", Facts(kNoReply, {Of("MCBG", Strike::kSilence)}), true},
      {"second of two fails", Facts(kError, {Of("MCBG"), Of("MCVG", Strike::kError, kError)}), true},
      {"distorted, any value", WithWrongValue(Facts(kDone, {Of("WDTG", Strike::kGarble)})), true},
      {"distorted, no reply", Facts(kNoReply, {Of("MCG", Strike::kDrop)}), true},
      {"distorted, not any status", Facts(ROLU_STATUS_VPM_SEND_FAILED, {Of("WDTG", Strike::kGarble)}), false},
      {"scale without an answer", Facts(kDone, {Of("ATF0"), Of("MCVU2", Strike::kSilence)}), true},
      {"alarm off without an answer",
       Ignoring("ARGI", Facts(kDone, {Of("ARGI00", Strike::kSilence), Of("GSF")})), true},
      {"alarm off without an answer decides", Facts(kDone, {Of("ARGI00", Strike::kSilence)}), false},
      {"down", OfDownFamily(Facts(ROLU_STATUS_NOT_INITIALIZED, {})), true},
      {"down, but asked", OfDownFamily(Facts(ROLU_STATUS_NOT_INITIALIZED, {Of("WDTG")})), false},
      {"up, but refused", Facts(ROLU_STATUS_NOT_INITIALIZED, {}), false},
      {"dead port", OnDeadPort(Facts(kNoReply, {})), true},
      {"dead port, another's answer", OnDeadPort(WithWrongValue(Facts(kDone, {Of("WDTG")}))), false},
  };
  for (const auto& row : rows) EXPECT_EQ(FaultIn(row.facts).text.empty(), row.allowed) << row.what;
}

TEST(Judgement, WaitsForAProcessorExplainWhatWasMissedOnly) {
  const struct {
    const char* what;
    CallFacts facts;
    std::chrono::nanoseconds explained_by;
  } rows[] = {
      {"no reply", Facts(kNoReply, {Of("WDTG")}), kStarved},
      {"no reply before a command went out", Facts(kNoReply, {}), kStarved},
      {"no reply in place of an error", Facts(kNoReply, {Of("WDTG", Strike::kError, kError)}), kStarved},
      {"no link", Facts(ROLU_STATUS_VPM_OPEN_FAILED, {}), kStarved},
      {"another's answer", WithWrongValue(Facts(kDone, {Of("WDTG")})), Fault::kUnexplained},
      {"error without a fault", Facts(kError, {Of("WDTG")}), Fault::kUnexplained},
      {"success in spite of silence", Facts(kDone, {Of("WDTG", Strike::kSilence)}), Fault::kUnexplained},
      {"no reply of a family that is down", OfDownFamily(Facts(kNoReply, {})), Fault::kUnexplained},
      {"up, but refused", Facts(ROLU_STATUS_NOT_INITIALIZED, {}), Fault::kUnexplained},
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

// A number that stands for its command cannot be another command's, nor the same one's a while ago.
TEST(WireCodes, WordsAreOfOneCommandAndOneTime) {
  const WireCode* delay = FindWireCode("MCUG0");
  const WireCode* watchdog = FindWireCode("WDTG");
  ASSERT_NE(delay, nullptr);
  ASSERT_NE(watchdog, nullptr);
  for (const std::uint64_t running : {1U, 2U, 1000U, 2047U}) {
    EXPECT_NE(DrawNumber(*delay, running), DrawNumber(*watchdog, running));
    EXPECT_NE(DrawNumber(*delay, running), DrawNumber(*delay, running + 1));
    EXPECT_EQ(AnswerText(delay->form, DrawNumber(*delay, running)).size(), 4U);
  }
  EXPECT_EQ(FindWireCode("XYZ"), nullptr);
}

}  // namespace
}  // namespace rolu_soak
