// Runs each example as its own process on this test's board.
#include <gmock/gmock.h>

#include <string>

#include "simulator/board.h"
#include "tests/support/process.h"

namespace {

using rolu_sim::McuModel;
using testing::HasSubstr;
using testing::MatchesRegex;

class Example : public rolu_test::Process {
 public:
  explicit Example(const std::string& command)
      : Process(rolu_test::Words(ROLU_EMULATOR " " EXAMPLES_FOLDER "/" + command)) {}

  // The next line, without its end; empty at the end of the output.
  std::string Line() {
    if (!WaitForOutput("\n", read_)) return {};
    const size_t start = read_;
    const size_t end = out().find('\n', start);
    read_ = end + 1;
    return out().substr(start, end - start);
  }
  // The line that holds `text`, or the end of the output.
  std::string LineWith(const std::string& text) {
    std::string line = Line();
    while (!line.empty() && line.find(text) == std::string::npos) line = Line();
    return line;
  }

 private:
  size_t read_ = 0;
};

class ExamplesTest : public testing::Test {
 protected:
  void SetUp() override { board_.AttachThisProcess(); }
  rolu_sim::Board board_;
};

TEST_F(ExamplesTest, GsensorAlarmsPrintsWhatShakes) {
  Example example("gsensor_alarms 2");
  ASSERT_THAT(example.LineWith("waiting"), HasSubstr("waiting for alarms"));
  board_.mcu().WithModel([](McuModel& mcu) { return mcu.ShakeTo({1000, 0, 256}); });
  EXPECT_EQ(example.Line(), "alarm: x   3906  y      0  z   1000");
  EXPECT_EQ(example.Line(), "1 samples");
  EXPECT_EQ(example.Wait(), 0);
}

TEST_F(ExamplesTest, WakeupAlarmSetsClockAndAlarm) {
  Example example("wakeup_alarm 06:45");
  EXPECT_THAT(example.LineWith("clock"), MatchesRegex("clock: 20..-..-.. ..:..:.."));
  EXPECT_THAT(example.Line(), MatchesRegex("alarm: weekday . at 06:45, on"));
  EXPECT_EQ(example.Wait(), 0);
  EXPECT_EQ(Example("wakeup_alarm 24:00").Wait(), 2);
}

TEST_F(ExamplesTest, DigitalPinsShowsInputsOnOutputs) {
  board_.gpio().SetInput(37, true);
  Example example("digital_pins");
  EXPECT_EQ(example.Line(), "input 1 is high, input 2 is low");
  EXPECT_EQ(example.Wait(), 0);
  EXPECT_TRUE(board_.gpio().Level(35));
  EXPECT_FALSE(board_.gpio().Level(34));
}

TEST_F(ExamplesTest, I2cRegisterReadsOne) {
  board_.register_device().SetRegister(0x12, 0xA5);
  Example example("i2c_register 0x50 0x12");
  EXPECT_EQ(example.Line(), "0x50 register 0x12: 0xA5");
  EXPECT_EQ(example.Wait(), 0);
  EXPECT_EQ(Example("i2c_register 0x22 0").Wait(), 1);
  EXPECT_EQ(Example("i2c_register 0x80 0").Wait(), 2);
}

TEST_F(ExamplesTest, TourAsksEveryFamily) {
  Example example("tour");
  for (const char* family :
       {"VPM ", "WD ", "GSENSOR ", "PERIPHERALCTRL ", "DISPLAY ", "LIGHTSENSOR ", "DIO ", "IIC "}) {
    EXPECT_THAT(example.LineWith(family), testing::StartsWith(family));
  }
  EXPECT_EQ(example.Line(), "TEMPERATURESENSOR, EEPROM: not provided by this board");
  EXPECT_EQ(example.Wait(), 0);
}

// Without a board, every example says what it could not do, and fails.
TEST(ExamplesWithoutABoard, FailWithASentence) {
  for (const char* name :
       {"gsensor_alarms", "power_manager state", "wakeup_alarm", "digital_pins", "i2c_register"}) {
    Example example(name);
    EXPECT_EQ(example.Wait(), 1) << name;
    EXPECT_THAT(example.err(), testing::StartsWith(rolu_test::Words(name).front() + ": "));
  }
}

}  // namespace
