// The commands of the subjects that have no behaviour of their own in time.

#include <gmock/gmock.h>

#include <string>
#include <utility>

#include "simulator/mcu/mcu_model.h"

namespace rolu_sim {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;

struct Exchange {
  const char* command;
  const char* answer;
};

// In order, on one MCU: later rows see what earlier ones set.
constexpr Exchange kExchanges[] = {
    {"MCUG3", "001E"},
    {"MCUS3003C", "OK"},
    {"MCUG3", "003C"},
    {"MCUG4", "00B4"},  // the others stay
    {"MCUS30000", "ERR-M08"},
    {"MCUS5003C", "ERR-M08"},
    {"MCUG5", "ERR-M08"},
    {"MCUG8", "ERR-M08"},
    {"MCUS7FFFF", "OK"},
    {"MCUG7", "FFFF"},
    {"MSDS0079", "OK"},
    {"MSDS0000", "ERR-M08"},
    {"MSDG", "0079"},
    {"MSSG", "0"},
    {"MSSS1", "OK"},
    {"MSSS2", "ERR-M08"},
    {"MSSG", "1"},
    {"IGNG", "ON"},
    {"IGMG", "1"},
    {"IGMS2", "OK"},
    {"IGMS3", "ERR-M08"},
    {"IGMG", "2"},
    {"MPAG", "1"},
    {"MPAS0", "OK"},
    {"MPAG", "0"},
    {"MCAG", "00"},
    {"MCAS10", "OK"},
    {"MCAG", "10"},
    {"MCAS0x", "ERR-M08"},
    {"MCAS012", "ERR-M08"},  // a mode of two digits
    {"MCAG", "10"},
    {"SDMG", "11"},
    {"SDMS10", "OK"},
    {"SDMS21", "ERR-M08"},
    {"SDMG", "10"},
    {"WKMG", "11000000000"},
    {"WKMS101", "OK"},       // source 10, on
    {"WKMS00", "OK"},        // source 0, off
    {"WKMS61", "OK"},        // the alarm
    {"WKMS71", "ERR-M08"},   // stands for no source
    {"WKMS27", "ERR-M08"},   // no state
    {"WKMS-11", "ERR-M08"},  // no number of a source
    {"WKMS011", "ERR-M08"},  // a leading zero
    {"WKMS111", "ERR-M08"},
    {"WKMG", "01000010001"},
    {"WKSG", "00"},
    {"B03", "0BA6"},
    {"B04", "1068"},
    {"B05", "0000000000000000"},
    {"B22", "0064"},
    {"GSV", "I000000000000"},
    {"ARGI01", "ERR-G01"},
    {"GSO", "OK"},
    {"GSV", "V000000000100"},
    {"ARGI01", "OK"},
    {"ARGI02", "ERR-M08"},
    {"GSRS03", "OK"},
    {"GSRS04", "ERR-M08"},
    {"GSRG", "03"},
    {"GSIS21", "OK"},
    {"GSIS1F", "ERR-M08"},
    {"GSISF1", "ERR-M08"},
    {"GSIG", "21"},
    {"GSWSFF", "OK"},
    {"GSWS00", "ERR-M08"},
    {"GSWG", "FF"},
    {"MCG", "0"},
    {"MCS01", "OK"},
    {"MCS11", "ERR-M08"},
    {"MCS012", "ERR-M08"},
    {"MCG", "1"},
    {"RTAG", "000000"},
    {"RTASA0CB0D", "OK"},  // weekday 5, 13:30, hour and minute match
    {"RTAG", "A0CB0D"},
    {"RTAS01E101", "OK"},  // weekday 0, 07:00, all match
    {"RTAG", "01E101"},
    {"RTASE0CB0D", "ERR-M08"},  // weekday 7
    {"RTASA0240D", "ERR-M08"},  // hour 24
    {"RTASA0CBFE", "ERR-M08"},  // minute 70 and a unit of 15
    {"RTASA0CB06", "ERR-M08"},  // minute 60
    {"RTAG", "01E101"},
    {"MCPS3102AA", "OK"},
    {"WDTS0001", "OK"},
};

// The values that the rows above changed, as they were before.
constexpr Exchange kDefaults[] = {
    {"MCUG3", "001E"}, {"MCUG7", "003C"},  {"MSDG", "0078"},        {"MSSG", "0"},
    {"IGMG", "1"},     {"MPAG", "1"},      {"MCAG", "00"},          {"SDMG", "11"},
    {"GSRG", "00"},    {"GSIG", "20"},     {"WKMG", "11000000000"}, {"GSWG", "10"},
    {"MCG", "0"},      {"MCPG31", "02EB"}, {"WDTG", "003C"},        {"RTAG", "000000"},
};

void ExpectAnswers(McuModel& mcu, const Exchange* begin, const Exchange* end) {
  for (const Exchange* row = begin; row != end; ++row) {
    EXPECT_THAT(mcu.Execute(row->command, TimePoint{}), ElementsAre(row->answer)) << row->command;
  }
}

TEST(McuSubjects, AnswerEachCommandAndRestoreAllSettings) {
  McuModel mcu;
  ExpectAnswers(mcu, std::begin(kExchanges), std::end(kExchanges));
  mcu.ignition.on = false;
  mcu.power_sources.last_wakeup_code = 0x21;
  mcu.gsensor.sample = {1, -1, 256};
  EXPECT_THAT(mcu.Execute("EEDF", TimePoint{}), ElementsAre("OK"));
  ExpectAnswers(mcu, std::begin(kDefaults), std::end(kDefaults));
  EXPECT_FALSE(mcu.gsensor.alarm_on);
  // No settings: what is measured and recorded stays.
  constexpr Exchange kConditions[] = {{"IGNG", "OFF"}, {"WKSG", "21"}, {"GSV", "V0001FFFF0100"}};
  ExpectAnswers(mcu, std::begin(kConditions), std::end(kConditions));
}

TEST(McuSubjects, TellWhatTheOwnerSetOfTheBackupBattery) {
  McuModel mcu;
  mcu.backup_battery = {4000, 2731, 50, 1000, 60, 45, 0x1F, 0x8081};
  constexpr Exchange kRows[] = {
      {"B04", "0FA0"}, {"B03", "0AAB"}, {"B22", "0032"}, {"B08", "03E8"},
      {"B11", "003C"}, {"B12", "002D"}, {"B09", "001F"}, {"B05", "1000000010000001"}};
  ExpectAnswers(mcu, std::begin(kRows), std::end(kRows));
}

TEST(McuSubjects, SetTheClockWithTwoLinesAndLetItRunOn) {
  struct Row {
    const char* set;
    std::chrono::milliseconds later;
    const char* reads;
  };
  constexpr Row kRows[] = {
      {"0E0719050D2D1E", 0ms, "0E0719050D2D1E"},      // 2014-07-25 13:45:30
      {"0E0719050D2D1E", 999ms, "0E0719050D2D1E"},    // whole seconds
      {"0E0719050D2D1E", 31000ms, "0E0719050D2E01"},  // a minute begins
      {"04021C06173B3B", 1000ms, "04021D00000000"},   // a leap day; after weekday 6 comes 0
      {"01021C06173B3B", 1000ms, "01030100000000"},   // no leap day
      {"630C1F00173B3B", 1000ms, "00010101000000"},   // the end of 2099
  };
  McuModel mcu;
  TimePoint now{100s};
  for (const Row& row : kRows) {
    EXPECT_THAT(mcu.Execute(std::string("RTCS") + row.set, now), ElementsAre("OK", "OK"));
    now += row.later;
    EXPECT_THAT(mcu.Execute("RTCG", now), ElementsAre(row.reads)) << row.set;
  }
  for (const char* const refused : {"01021D00000000", "0E0D0100000000", "0E070100180000", "0E0701070000zz"}) {
    EXPECT_THAT(mcu.Execute(std::string("RTCS") + refused, now), ElementsAre("OK", "ERR-M08")) << refused;
  }
  EXPECT_THAT(mcu.Execute("RTCG", now), ElementsAre("00010101000000"));
}

}  // namespace
}  // namespace rolu_sim
