// The MCU's answers and its settings. mcu_timers_test tests what the MCU does on its own.

#include "simulator/mcu/mcu_model.h"

#include <gmock/gmock.h>

#include <stdexcept>

namespace rolu_sim {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::HasSubstr;

struct Exchange {
  const char* command;
  const char* answer;
};

// Runs the rows in order on one MCU, so later rows depend on earlier ones.
void ExpectAnswers(McuModel& mcu, const std::vector<Exchange>& rows) {
  for (const Exchange& row : rows) {
    EXPECT_THAT(mcu.Execute(row.command, TimePoint{}), ElementsAre(row.answer)) << row.command;
  }
}

TEST(McuModel, AnswersAsABoardFromTheFactory) {
  McuModel mcu;
  const std::vector<Exchange> exchanges = {
      {"", "ERR-C01"},
      {"hello", "ERR-C01"},
      {"ATF1", "*PLT:KAVO-ROLU-30*"},
      {"MCVU2", "0.01582"},
      {"MCVU3", "0.015385"},
      {"MCPR3", "02AA02EB030C"},
      {"MCPR4", "ERR-M08"},
      {"MCVG", "0333"},  // 12.6 V / 0.015385
      {"MCBS02", "OK"},
      {"MCVG", "031C"},  // the same 12.6 V / 0.01582
      {"IGNG", "ON"},
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
  };
  ExpectAnswers(mcu, exchanges);
}

struct Setting {
  const char* read;
  const char* factory;
  const char* set;
  const char* then;
  std::vector<const char*> refused = {};
};

const Setting kSettings[] = {
    {"MCBG", "03", "MCBS02", "02"},
    {"MCCG", "11", "MCCS01", "01"},
    {"MCPG21", "05AE", "MCPS21052F", "052F", {"MCPS21052E", "MCPS2105EE"}},
    {"MCPG30", "02EB", "MCPS3002AA", "02AA"},
    {"MCPG31", "02EB", "MCPS31030C", "030C", {"MCPS31030D", "MCPS3102A9"}},
    {"MCUG3", "001E", "MCUS3003C", "003C", {"MCUS30000"}},
    {"MCUG4", "00B4", "MCUS4FFFF", "FFFF"},
    {"MSDG", "0078", "MSDS0079", "0079", {"MSDS0000"}},
    {"MSSG", "0", "MSSS1", "1"},
    {"IGMG", "1", "IGMS2", "2", {"IGMS0", "IGMS3"}},
    {"MPAG", "1", "MPAS0", "0"},
    {"MCAG", "00", "MCAS10", "10", {"MCAS012"}},  // a mode of two digits
    {"SDMG", "11", "SDMS10", "10", {"SDMS21"}},
    {"WKMG", "11000000000", "WKMS101", "11000000001", {"WKMS71", "WKMS111"}},
    {"WDTG", "003C", "WDTS012C", "012C", {"WDTS0000"}},
    {"GSRG", "00", "GSRS03", "03", {"GSRS04"}},
    {"GSIG", "20", "GSIS21", "21", {"GSIS1F", "GSISF1"}},
    {"GSWG", "10", "GSWSFF", "FF", {"GSWS00"}},
    {"MCG", "0", "MCS01", "1"},
    {"RTAG",
     "000000",
     "RTASA0CB0D",
     "A0CB0D",         // weekday 5, 13:30, hour and minute match
     {"RTASE0CB0D",    // weekday 7
      "RTASA0240D",    // hour 24
      "RTASA0CBFE",    // minute 70 and a unit of 15
      "RTASA0CB06"}},  // minute 60
};

TEST(McuModel, KeepsEachSettingApartAndRestoresAll) {
  McuModel mcu;
  const auto answer_to = [&](const char* command) { return mcu.Execute(command, TimePoint{}); };
  for (const Setting& row : kSettings) {
    EXPECT_THAT(answer_to(row.read), ElementsAre(row.factory)) << row.read;
    EXPECT_THAT(answer_to(row.set), ElementsAre("OK")) << row.set;
    for (const char* const refused : row.refused)
      EXPECT_THAT(answer_to(refused), ElementsAre("ERR-M08")) << refused;
  }
  for (const Setting& row : kSettings) EXPECT_THAT(answer_to(row.read), ElementsAre(row.then)) << row.read;

  mcu.ignition.on = false;
  mcu.power_sources.last_wakeup_code = 0x21;
  mcu.gsensor = {.on = true, .sample = {1, -1, 256}, .alarm_on = true};
  EXPECT_THAT(answer_to("EEDF"), ElementsAre("OK"));
  for (const Setting& row : kSettings) EXPECT_THAT(answer_to(row.read), ElementsAre(row.factory)) << row.read;
  EXPECT_FALSE(mcu.gsensor.alarm_on);
  // Measurements and records are not settings, so they stay.
  ExpectAnswers(mcu, {{"IGNG", "OFF"}, {"WKSG", "21"}, {"GSV", "V0001FFFF0100"}});
}

TEST(McuModel, TellsWhatTheOwnerSetOfTheBackupBattery) {
  McuModel mcu;
  mcu.backup_battery = {4000, 2731, 50, 1000, 60, 45, 0x1F, 0x8081};
  ExpectAnswers(mcu, {{"B04", "0FA0"},
                      {"B03", "0AAB"},
                      {"B22", "0032"},
                      {"B08", "03E8"},
                      {"B11", "003C"},
                      {"B12", "002D"},
                      {"B09", "001F"},
                      {"B05", "1000000010000001"}});
}

TEST(McuModel, SetsTheClockWithTwoLinesAndLetsItRunOn) {
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
      {"630C1F00173B3B", 1440h, "00021D04173B3B"},    // 2000 has a leap day
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
  EXPECT_THAT(mcu.Execute("RTCG", now), ElementsAre(kRows[6].reads));
}

TEST(McuModel, MeasuresABatteryThatFollowsACurve) {
  McuModel mcu;
  mcu.SetBatteryCurve(VoltageCurve::Parse("1s=12.0 3000ms=10.0"), TimePoint{10s});
  const auto volts_at = [&](TimePoint time) { return mcu.battery.VoltsAt(time); };
  EXPECT_DOUBLE_EQ(volts_at(TimePoint{0s}), 12.0);
  EXPECT_DOUBLE_EQ(volts_at(TimePoint{11500ms}), 11.5);
  EXPECT_DOUBLE_EQ(volts_at(TimePoint{60s}), 10.0);
  mcu.SetBatteryVolts(1e6);
  EXPECT_THAT(mcu.Execute("MCVG", TimePoint{}), ElementsAre("FFFF"));
}

TEST(VoltageCurve, RefusesATextThatIsNoCurveAndNamesThePoint) {
  for (const char* const word : {"12.6", "1s", "1=12", "1s=", "1s=x", "1s=12V", "s=12", "-1s=12", "1s=-1",
                                 "1s=101", "1s=nan", "1e30s=1"}) {
    try {
      VoltageCurve::Parse(std::string("0s=12 ") + word);
      ADD_FAILURE() << word;
    } catch (const std::invalid_argument& problem) {
      EXPECT_THAT(problem.what(), HasSubstr(word));
    }
  }
  EXPECT_THROW(VoltageCurve::Parse("2s=12 2s=11"), std::invalid_argument);
  EXPECT_THROW(VoltageCurve::Parse(" "), std::invalid_argument);
}

}  // namespace
}  // namespace rolu_sim
