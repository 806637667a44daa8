// Every family that talks to the MCU, by the oracle's table of its operations.
#include <cctype>

#include "tests/oracle/meaning.h"
#include "tests/oracle/operations.h"
#include "tests/support/call_table.h"
#include "tests/support/process_state.h"

namespace rolu_test {

void PrintTo(const McuFamily& family, std::ostream* stream) {
  *stream << family.prefix;
}

namespace {

class EachFamily : public testing::TestWithParam<McuFamily>, protected CallTable {
 protected:
  using CallTable::Run;
  EachFamily() : CallTable(GetParam().switches) {}
  void TearDown() override { family().deinitialize(); }

  static bool TakesDown(const CallRow& row) { return row.name == GetParam().prefix + "Deinitialize"; }

  // All but those that bring the family up or down.
  static std::vector<CallRow> Operations() {
    std::vector<CallRow> operations;
    for (const CallRow& row : GetParam().operations) {
      if (!row.brings_up && !TakesDown(row)) operations.push_back(row);
    }
    return operations;
  }

  // The same calls, all of which are refused before anything is sent.
  static std::vector<CallRow> Refused(ROLU_STATUS status, ROLU_STATUS status_of_null_output) {
    std::vector<CallRow> rows;
    for (const CallRow& row : Operations()) {
      if (status != ROLU_STATUS_SUCCESS) rows.push_back(Fails(row.name + ", refused", row.call, {}, status));
      if (row.output.empty()) continue;
      rows.push_back(Fails(row.name + ", null output", row.call, {}, status_of_null_output));
      rows.back().output_is_null = true;
    }
    return rows;
  }
};

TEST_P(EachFamily, ComesUpAndGoesDown) {
  std::string up_wire;
  std::string down_wire;
  for (const CallRow& row : GetParam().operations) {
    if (row.brings_up) up_wire = row.wire;
    if (TakesDown(row)) down_wire = row.wire;
  }
  const auto up = [this](void*) { return family().initialize(); };
  const auto down = [this](void*) { return family().deinitialize(); };
  board().RemoveSerialDevice();
  Run({Fails("down before up", down, {}, ROLU_STATUS_NOT_INITIALIZED),
       Fails("up without a port", up, {}, ROLU_STATUS_VPM_OPEN_FAILED),
       Fails("down after a failed up", down, {}, ROLU_STATUS_NOT_INITIALIZED)});
  board().RestoreSerialDevice();
  for (const char* round : {"first", "second"}) {
    SCOPED_TRACE(round);
    Run({Orders("up", up, {}, up_wire, 0), Fails("up while up", up, {}, ROLU_STATUS_ALREADY_INITIALIZED),
         Orders("down", down, {}, down_wire, 0),
         Fails("down while down", down, {}, ROLU_STATUS_NOT_INITIALIZED)});
    EXPECT_TRUE(board().mcu().WaitForHostClosed(kGenerous));
  }
}

TEST_P(EachFamily, RefusesEveryCallWhileItIsDown) {
  Run(Refused(ROLU_STATUS_NOT_INITIALIZED, GetParam().null_while_down));
}

TEST_P(EachFamily, SaysWhatItMeans) {
  BringUp();
  Run(Operations());
  Run(Refused(ROLU_STATUS_SUCCESS, GetParam().null_while_up));
}

// What the MCU answers to one command of an operation; the oracle says what comes of it.
struct OddAnswers {
  const char* operation;
  size_t command;
  std::vector<std::string> answers;
};

const std::string kLongFlags = "01" + std::string(61, 'x');

const OddAnswers kOddAnswers[] = {
    {"VPM_GetPlatformName", 0, {"*PLT:ABC", "*PLT:", "*PL", std::string(63, 'x')}},
    {"VPM_GetLBPThresholdFor12VSystem", 0, {" 0x2eb V", "OK", "ERR-M05", "-1", "123456789"}},
    {"VPM_GetCarBatteryVoltage 12V", 0, {"1"}},
    {"VPM_GetCarBatteryVoltage 12V", 1, {"-1"}},
    {"VPM_GetCurrentCarBatteryMode", 0, {"1", "04", "13", "OK"}},
    {"VPM_SetLBPStatus", 0, {"11", "?0", "0", kLongFlags}},
    {"VPM_SetPrebootLBPStatus", 0, {"01", "?1", "1", kLongFlags}},
    {"VPM_GetLBPStatus", 0, {"1", kLongFlags}},
    {"VPM_GetPrebootLBPStatus", 0, {"21", kLongFlags}},
    {"VPM_GetBackupBatteryVoltage", 0, {"0FA0", "OK"}},
    {"VPM_GetBackupBatteryTemperture", 0, {"0AAB", "OK"}},
    {"VPM_GetBackupBatteryPercentageOfCharge", 0, {"-1", "FFFFFFFF"}},
    {"VPM_GetBackupBatteryInfo", 1, {"1000000010000001", "110", "2", "-1", std::string(40, '1')}},
    {"VPM_GetIgnitionStatus on", 0, {"ONLY", "on", "O", "ERR"}},
    {"VPM_GetIgnitionMode", 0, {"1", "3"}},
    {"VPM_GetPrePowerOffAlarm", 0, {"OK"}},
    {"VPM_SetATMode", 0, {"OK", "7"}},
    {"VPM_SetKeepAliveMode", 0, {"OK", "7"}},
    {"VPM_GetATMode", 0, {"7", "OK"}},
    {"VPM_GetKeepAliveMode", 0, {"7", "OK"}},
    {"VPM_GetIgnHardOffDelay", 0, {"12345", "OK"}},
    {"VPM_GetForceShutDown", 0, {"2", "1OK"}},
    {"VPM_GetShutdownSourceControlStatus 1", 0, {"1x", "1"}},
    {"VPM_GetWakeupSourceControlStatus", 0, {"000000", "0000000"}},
    {"VPM_GetAlarmActive", 0, {"000000"}},
    {"VPM_GetLastWakeupSource",
     0,
     {"00", "01", "02", "03", "04", "0F", "10", "11", "20", "21", "22", "40", "50", "60", "61", "8000",
      "10030", "none"}},
    {"VPM_SetRTCTime", 0, {"ERR-M08\r\nOK", "OK\r\nERR-M08", "OK\r\nERR-T01"}},
    {"VPM_GetRTCTime", 0, {"0E07", "OK", "FFFFFFFFFFFFFF"}},
    {"VPM_GetAlarmTime", 0, {"000000", "01E101", "00009B", "A0C"}},
    {"WD_SetTime", 0, {"later"}},
    {"WD_GetTime", 0, {"0x12C", "12345", "123456789", "-1", " 12,345", "OK", "-ERR-W09"}},
    {"GSENSOR_GetAlarmThreshold", 0, {"1", "F0A", "-1", "OK"}},
    {"GSENSOR_GetResolution", 0, {"FF", "-5", "?"}},
    {"GSENSOR_GetData", 0, {"x0002FFFEFF00", "V7FFF80000000", "I000000000000", "V00010002"}},
    {"PERIPHERALCTRL_GetPeripheralControl", 0, {"0", "2"}},
};

// The backup battery's flags, each alone.
OddAnswers SingleFlags() {
  OddAnswers flags = {"VPM_GetBackupBatteryInfo", 1, {}};
  for (size_t bit = 0; bit < 16; ++bit) {
    flags.answers.emplace_back(16, '0');
    flags.answers.back()[bit] = '1';
  }
  return flags;
}

TEST_P(EachFamily, MakesOfOddAnswersWhatTheOracleSays) {
  BringUp();
  std::vector<OddAnswers> rows(std::begin(kOddAnswers), std::end(kOddAnswers));
  rows.push_back(SingleFlags());
  size_t answers = 0;
  for (const CallRow& operation : GetParam().operations) {
    for (const OddAnswers& row : rows) {
      if (operation.name != row.operation) continue;
      for (const std::string& answer : row.answers) {
        CallRow odd = operation;
        odd.answers[row.command] = answer;
        EXPECT_EQ(FaultOf(Make(odd), OddAnswer{&operation, row.command, answer + "\r\n"}), "")
            << operation.name << " answered " << answer;
        ++answers;
      }
    }
  }
  EXPECT_GT(answers, 0U);
}

std::string NameOf(const testing::TestParamInfo<McuFamily>& info) {
  return info.param.prefix.substr(0, info.param.prefix.size() - 1);
}

INSTANTIATE_TEST_SUITE_P(Of, EachFamily, testing::ValuesIn(McuFamilies()), NameOf);

}  // namespace
}  // namespace rolu_test
