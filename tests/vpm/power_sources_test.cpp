#include "kavo_rolu.h"
#include "tests/oracle/operations.h"
#include "tests/oracle/vpm_calls.h"
#include "tests/vpm/vpm_family.h"

namespace rolu_test {
namespace {

constexpr ROLU_STATUS kDone = ROLU_STATUS_SUCCESS;
constexpr ROLU_STATUS kBad = ROLU_STATUS_INVALID_PARAMETER;
constexpr ROLU_STATUS kInvalid = ROLU_STATUS_VPM_INVALID_REPLY;

const Call kGetLast = Into(KAVO_ROLU_VPM_GetLastWakeupSource);

Bytes Source(int32_t source) {
  return Written(source);
}

TEST_F(VpmTest, DownFamilyRefusesEverySourceCall) {
  Run(Refused(PowerSourceOperations(), ROLU_STATUS_NOT_INITIALIZED));
  Run(RefusedForNullOutput(PowerSourceOperations(), ROLU_STATUS_NOT_INITIALIZED));
  Run({{"bad source while down", SetShutdown(2, 1), {}, ROLU_STATUS_NOT_INITIALIZED}});
}

TEST_F(VpmTest, SourceCallsSayWhatTheyMean) {
  BringUp();
  Run(PowerSourceOperations());
  Run(RefusedForNullOutput(PowerSourceOperations(), kBad));
}

TEST_F(VpmTest, OddSourcesAndAnswers) {
  BringUp();
  Run({
      {"shutdown 2", SetShutdown(2, 1), {}, kBad},
      {"shutdown -1", SetShutdown(-1, 1), {}, kBad},
      {"get shutdown 2", GetShutdown(2), {}, kBad},
      {"get shutdown -1", GetShutdown(-1), {}, kBad},
      {"wake-up none", SetWakeup(-1, 1), {}, kBad},
      {"get wake-up none", GetWakeup(-1), {}, kBad},
      {"a state goes out as it is", SetWakeup(2, 7), {"OK"}, kDone, {}, "WKMS27\r", 50},
      {"as unsigned", SetWakeup(2, -1), {"OK"}, kDone, {}, "WKMS2255\r", 50},
      {"alarm as unsigned", With(KAVO_ROLU_VPM_SetAlarmActive, -2), {"OK"}, kDone, {}, "WKMS6254\r", 50},
      {"a source without a name goes out", SetWakeup(-2, 1), {"OK"}, kDone, {}, "WKMS-21\r", 50},
      {"get a source before the line", GetWakeup(-2), {"0000001"}, kInvalid, {}, "WKMG\r"},
      {"get a source beyond the line", GetWakeup(6), {"000000"}, kInvalid, {}, "WKMG\r"},
      {"get a source far beyond", GetWakeup(2000000000), {"000000"}, kInvalid, {}, "WKMG\r"},
      {"get alarm beyond", Into(KAVO_ROLU_VPM_GetAlarmActive), {"000000"}, kInvalid, {}, "WKMG\r"},
      {"neither on nor off", GetShutdown(1), {"1x"}, kInvalid, {}, "SDMG\r"},
  });
}

TEST_F(VpmTest, LastWakeupCodes) {
  struct Code {
    const char* answer;
    int32_t source;
  };
  constexpr Code kKnown[] = {{"00", -1}, {"10", 0}, {"01", 1}, {"02", 1},  {"03", 1},    {"60", 2},
                             {"50", 3},  {"20", 4}, {"21", 5}, {"40", 10}, {"10030", 6}, {"none", -1}};
  BringUp();
  for (const Code& code : kKnown)
    Run({{code.answer, kGetLast, {code.answer}, kDone, Source(code.source), "WKSG\r"}});
  for (const char* answer : {"04", "0F", "11", "22", "61", "8000"}) {
    Run({{answer, kGetLast, {answer}, ROLU_STATUS_VPM_UNKNOWN_VALUE, {}, "WKSG\r"}});
  }
}

}  // namespace
}  // namespace rolu_test
