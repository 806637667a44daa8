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

// In order, on one MCU: later rows see what earlier ones set.
constexpr Exchange kExchanges[] = {
    {"Hello", "OK"},
    {"ATF0", "*VER:  1. 26*"},
    {"ATF1", "*PLT:KAVO-ROLU-30*"},
    {"MCVU2", "0.01582"},
    {"MCVU3", "0.015385"},
    {"MCPR3", "02AA02EB030C"},
    {"MCPR4", "ERR-M08"},
    {"MCBG", "03"},
    {"MCVG", "0333"},  // 12.6 V / 0.015385
    {"MCPG31", "02EB"},
    {"MCPS31030C", "OK"},
    {"MCPG31", "030C"},
    {"MCPG30", "02EB"},         // the other protection's stays
    {"MCPS31030D", "ERR-M08"},  // above the range
    {"MCPS3102eb", "ERR-M08"},  // lower case
    {"MCPS3102E", "ERR-M08"},   // short
    {"MCPG31", "030C"},
    {"MCCG", "11"},
    {"MCCS01", "OK"},
    {"MCCG", "01"},
    {"MCCS0x", "ERR-M08"},
    {"MCBS02", "OK"},
    {"MCBG", "02"},
    {"MCVG", "031C"},  // the same 12.6 V / 0.01582
    {"MCBS01", "ERR-M08"},
    {"WDTS012C", "OK"},
    {"WDTG", "012C"},
    {"WDTS0000", "ERR-M08"},
    {"WDTE", "OK"},
    {"WDTR", "OK"},
    {"WDTR1", "ERR-M08"},
    {"", "ERR-C01"},
    {"MCV", "ERR-C01"},
    {"hello", "ERR-C01"},
};

TEST(McuModel, AnswersEachCommandAsTheMicrocontrollerDoes) {
  McuModel mcu;
  for (const Exchange& row : kExchanges) {
    EXPECT_THAT(mcu.Execute(row.command, TimePoint{}), ElementsAre(row.answer)) << row.command;
  }
}

TEST(McuModel, KeepsTheWatchdogsStateForItsOwner) {
  McuModel mcu;
  mcu.Execute("WDTE", TimePoint{1s});
  mcu.Execute("WDTR", TimePoint{3s});
  EXPECT_TRUE(mcu.watchdog.enabled);
  EXPECT_EQ(mcu.watchdog.trigger_count, 1U);
  EXPECT_EQ(mcu.watchdog.last_trigger, TimePoint{3s});
  mcu.Execute("WDTD", TimePoint{4s});
  EXPECT_FALSE(mcu.watchdog.enabled);
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
