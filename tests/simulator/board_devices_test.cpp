// The board's own devices, used through a program's calls.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "simulator/board.h"

namespace rolu_sim {
namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

// 0, or the errno of the open or the write.
int WriteTo(const std::string& path, const std::string& text) {
  const UniqueFd file(open(path.c_str(), O_WRONLY | O_CLOEXEC));
  if (!file) return errno;
  return write(file.get(), text.data(), text.size()) == static_cast<ssize_t>(text.size()) ? 0 : errno;
}

// Reads the text in pieces of two bytes. Returns the text, or the reason why there is none.
std::string ReadFrom(const std::string& path) {
  const UniqueFd file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
  if (!file) return strerrorname_np(errno);
  std::string text;
  std::array<char, 2> piece{};
  ssize_t length = 0;
  while ((length = read(file.get(), piece.data(), piece.size())) > 0) {
    text.append(piece.data(), static_cast<size_t>(length));
  }
  return length < 0 ? strerrorname_np(errno) : text;
}

std::string OutputOf(const char* command) {
  FILE* const pipe = popen(command, "r");
  if (pipe == nullptr) return "popen failed";
  std::string output;
  std::array<char, 512> piece{};
  size_t length = 0;
  while ((length = fread(piece.data(), 1, piece.size(), pipe)) > 0) output.append(piece.data(), length);
  const int status = pclose(pipe);
  return status == 0 ? output : "status " + std::to_string(status);
}

class BoardDevices : public testing::Test {
 protected:
  BoardDevices() { board_.AttachThisProcess(); }

  Board board_;
};

TEST_F(BoardDevices, GpioLinesAreThereOnceTheyAreExported) {
  EXPECT_EQ(WriteTo(GpioPath(45, "direction"), "out"), ENOENT);
  EXPECT_FALSE(board_.gpio().IsExported(45));
  for (const char* const unknown : {"44", "4", "-1", "", "45x", "99999999999"}) {
    EXPECT_EQ(WriteTo(kGpioExportPath, unknown), EINVAL) << unknown;
  }
  EXPECT_EQ(WriteTo(kGpioExportPath, "45\n"), 0);
  EXPECT_EQ(WriteTo(kGpioExportPath, "45"), EBUSY);
  EXPECT_TRUE(board_.gpio().IsExported(45));
  EXPECT_EQ(ReadFrom(GpioPath(45, "direction")), "in\n");
  EXPECT_EQ(ReadFrom("/sys/class/gpio/gpio37/value"), "ENOENT");
  EXPECT_EQ(ReadFrom(kGpioExportPath), "EACCES");
  DeviceFaults faults;
  faults.write_errno = EIO;
  board_.devices().SetFaults(kGpioExportPath, faults);
  EXPECT_EQ(WriteTo(kGpioExportPath, "37"), EIO);
  EXPECT_FALSE(board_.gpio().IsExported(37));
}

TEST_F(BoardDevices, AGpioLineIsDrivenFromItsOwnSide) {
  constexpr struct {
    const char* attribute;
    const char* text;
    int error;
    const char* direction;
    bool level;
  } kSteps[] = {
      {"value", "0", EPERM, "in\n", true},
      {"direction", "up", EINVAL, "in\n", true},
      {"direction", "out", 0, "out\n", false},
      {"value", "1\n", 0, "out\n", true},
      {"value", "high", EINVAL, "out\n", true},
      {"direction", "out", 0, "out\n", false},  // an output goes low as well
      {"direction", "high\n", 0, "out\n", true},
      {"direction", "low", 0, "out\n", false},
      {"value", "0x2", 0, "out\n", true},  // any number but 0 is high
      {"direction", "in", 0, "in\n", false},
  };
  ASSERT_EQ(WriteTo(kGpioExportPath, "45"), 0);
  board_.gpio().SetInput(45, true);
  for (const auto& step : kSteps) {
    SCOPED_TRACE(step.text);
    EXPECT_EQ(WriteTo(GpioPath(45, step.attribute), step.text), step.error);
    if (board_.gpio().IsOutput(45)) board_.gpio().SetInput(45, !step.level);
    EXPECT_EQ(ReadFrom(GpioPath(45, "direction")), step.direction);
    EXPECT_EQ(ReadFrom(GpioPath(45, "value")), step.level ? "1\n" : "0\n");
    EXPECT_EQ(board_.gpio().Level(45), step.level);
  }
}

TEST_F(BoardDevices, TheBacklightTakesItsLevelsAndNothingElse) {
  EXPECT_EQ(ReadFrom(kBacklightPath), "10\n");
  EXPECT_EQ(WriteTo(kBacklightPath, "+07"), 0);
  for (const char* const refused : {"11", "0xB", "08", "-1", "", "0x", "bright", "5 "}) {
    EXPECT_EQ(WriteTo(kBacklightPath, refused), EINVAL) << refused;
  }
  EXPECT_EQ(board_.backlight().level(), 7);
  board_.backlight().SetLevel(0);
  EXPECT_EQ(ReadFrom(kBacklightPath), "0\n");
}

TEST_F(BoardDevices, TheLightSensorIsReadAndItsTextIsTheOwners) {
  board_.light_sensor().SetNumber(12345);
  EXPECT_EQ(ReadFrom(kLuxPath), "12345\n");
  EXPECT_EQ(WriteTo(kLuxPath, "1"), EACCES);
  board_.light_sensor().SetText("");
  EXPECT_EQ(ReadFrom(kLuxPath), "");
}

TEST_F(BoardDevices, TheKernelsStateGoesWithThePower) {
  ASSERT_EQ(WriteTo(kGpioExportPath, "45") + WriteTo(GpioPath(45, "direction"), "high"), 0);
  ASSERT_EQ(WriteTo(kBacklightPath, "3"), 0);
  board_.mcu().WithModel([](McuModel& mcu) { mcu.computer.survives_power_cut = false; });
  ASSERT_EQ(WriteTo(kSerialPath, "ATPO\r"), 0);
  ASSERT_TRUE(board_.mcu().WaitForEvent(McuEventKind::kPowerCut, std::chrono::seconds(20)));
  for (const char* const path : {kGpioExportPath, kBacklightPath, kLuxPath, kI2cBusPath, kSerialPath}) {
    EXPECT_EQ(WriteTo(path, ""), ENODEV) << path;
  }
  EXPECT_EQ(fopen(kSerialPath, "r+"), nullptr);

  board_.mcu().WithModel([](McuModel& mcu) { mcu.WakeComputer(1); });
  EXPECT_EQ(ReadFrom(kBacklightPath), "10\n");
  EXPECT_EQ(ReadFrom(GpioPath(45, "value")), "ENOENT");
  EXPECT_EQ(WriteTo(kGpioExportPath, "45") + WriteTo(kSerialPath, ""), 0);
  EXPECT_EQ(ReadFrom(GpioPath(45, "direction")), "in\n");
}

TEST_F(BoardDevices, TheNetworkCommandShowsAndSwitchesTheWirelessInterface) {
  EXPECT_THAT(OutputOf("ifconfig"), Not(HasSubstr("wlan0")));
  EXPECT_THAT(OutputOf("ifconfig wlan0"), StartsWith("wlan0: flags=4098<BROADCAST,MULTICAST>"));
  EXPECT_EQ(OutputOf("ifconfig wlan0 up"), "");
  EXPECT_TRUE(board_.wireless().IsUp());
  EXPECT_THAT(OutputOf("ifconfig | grep wlan0"), StartsWith("wlan0: flags=4163<UP,"));
  board_.wireless().Set(false);
  EXPECT_THAT(OutputOf("ifconfig"), Not(HasSubstr("wlan0")));
  board_.wireless().Set(true);
  EXPECT_EQ(OutputOf("ifconfig wlan0 down"), "");
  EXPECT_FALSE(board_.wireless().IsUp());
  EXPECT_THAT(OutputOf("ifconfig eth7 up 2>/dev/null"), StartsWith("status "));
}

}  // namespace
}  // namespace rolu_sim
