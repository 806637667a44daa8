#include "simulator/line/mcu_serial.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>

namespace rolu_sim {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::Ge;
using testing::UnorderedElementsAre;

constexpr auto kPatience = 10s;

// A program at the near end of the line.
class Host {
 public:
  explicit Host(const McuSerial& serial) : port_(open(serial.DevicePath().c_str(), O_RDWR | O_NOCTTY)) {}

  int port() const { return port_.get(); }
  bool Send(std::string_view bytes) const {
    return write(port(), bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size());
  }
  // Reads until `count` bytes are there.
  std::string Read(size_t count) const {
    std::string bytes;
    pollfd source{port(), POLLIN, 0};
    while (bytes.size() < count && poll(&source, 1, std::chrono::milliseconds(kPatience).count()) > 0) {
      char buffer[256];
      const ssize_t length = read(port(), buffer, sizeof buffer);
      if (length <= 0) break;
      bytes.append(buffer, static_cast<size_t>(length));
    }
    return bytes;
  }
  bool HasNothingToRead() const {
    pollfd source{port(), POLLIN, 0};
    return poll(&source, 1, 0) == 0;
  }

 private:
  UniqueFd port_;
};

TEST(McuSerial, OffersARawPortAndAnswersWhatArrivesInPieces) {
  McuSerial serial;
  const Host host(serial);
  termios attributes{};
  ASSERT_EQ(tcgetattr(host.port(), &attributes), 0);
  EXPECT_EQ(attributes.c_lflag & (ICANON | ECHO | ISIG), 0U);

  host.Send("MC");
  host.Send("BG\r\rWDTG\r");
  EXPECT_EQ(host.Read(10), "03\r\n003C\r\n");
  EXPECT_THAT(serial.CommandsReceived(), ElementsAre("MCBG", "WDTG"));
}

TEST(McuSerial, LetsScriptedRepliesGoBeforeTheModel) {
  McuSerial serial;
  const Host host(serial);
  serial.Script(CommandMatch::Exactly("MCBG"), Reply::Lines({"one", "two"}), 2);
  serial.Script(CommandMatch::StartingWith("WDT"), Reply::Silence(), kEveryTime);
  serial.Script(CommandMatch::Exactly("MCVG"), Reply::Bytes("02\r", 1ms).Then("\xff[", 1ms));
  host.Send("MCBG\rWDTG\rWDTS0001\rMCBG\rMCBG\r");
  EXPECT_EQ(host.Read(24), "one\r\ntwo\r\none\r\ntwo\r\n03\r\n");
  host.Send("MCVG\r");
  EXPECT_EQ(host.Read(5), "02\r\xff[");
  EXPECT_EQ(serial.WithModel([](McuModel& mcu) { return mcu.watchdog.time; }), 60);
  serial.ClearScript();
  host.Send("WDTG\r");
  EXPECT_EQ(host.Read(6), "003C\r\n");
}

TEST(McuSerial, SendsALateLineAfterTheAnswerToALaterCommand) {
  McuSerial serial;
  const Host host(serial);
  serial.Script(CommandMatch::Exactly("MCVG"), Reply::Line("late", 100ms));
  const auto sent = std::chrono::steady_clock::now();
  host.Send("MCVG\rMCBG\r");
  EXPECT_EQ(host.Read(10), "03\r\nlate\r\n");
  EXPECT_THAT(std::chrono::steady_clock::now() - sent, Ge(100ms));
}

TEST(McuSerial, SendsUnaskedBytesAndStaysSilentWhenToldTo) {
  McuSerial serial;
  const Host host(serial);
  const auto warn = [&](PowerOffWarning warning) {
    serial.WithModel([&](McuModel& mcu) { mcu.WarnOfPowerOff(warning); });
  };
  serial.SendRaw("[x]\r");
  EXPECT_TRUE(serial.WithModel([](McuModel& mcu) {
    mcu.gsensor = {.on = true, .alarm_on = true};
    return mcu.ShakeTo({600, 0, 256});
  }));
  serial.SetSilent(true);
  warn(PowerOffWarning::kIgnition);
  host.Send("MCBG\r");
  ASSERT_TRUE(serial.WaitForCommand("MCBG", kPatience));
  serial.SetSilent(false);
  warn(PowerOffWarning::kLowVoltage);
  host.Send("WDTG\r");
  EXPECT_EQ(host.Read(37), "[x]\r[GI:025800000100]\r\n[0001]\r\n003C\r\n");
}

TEST(McuSerial, TellsTheOwnerOfEventsAndSendsWhatIsDue) {
  std::vector<McuEventKind> heard;
  McuSerialOptions options;
  options.event_listener = [&](const McuEvent& event) { heard.push_back(event.kind); };
  McuSerial serial(options);
  const Host host(serial);
  const auto start = std::chrono::steady_clock::now();
  host.Send("WDTS0001\rWDTE\rMCUS30001\rATPO\r");
  ASSERT_TRUE(serial.WaitForEvent(McuEventKind::kPowerCut, kPatience));
  serial.WithModel([](McuModel& mcu) { mcu.ignition.on = false; });
  ASSERT_TRUE(serial.WaitForEvent(McuEventKind::kWatchdogBite, kPatience));
  ASSERT_TRUE(serial.WaitForEvent(McuEventKind::kIgnitionWarning, kPatience));
  EXPECT_THAT(serial.Events().back().time - start, Ge(1s));
  EXPECT_EQ(host.Read(24), "OK\r\nOK\r\nOK\r\nOK\r\n[0000]\r\n");
  EXPECT_THAT(heard, UnorderedElementsAre(McuEventKind::kPowerCut, McuEventKind::kWatchdogBite,
                                          McuEventKind::kIgnitionWarning));
}

TEST(McuSerial, TakesTheTimeOfTheLineWhenPaced) {
  McuSerialOptions options;
  options.paced = true;
  McuSerial serial(options);
  const Host host(serial);
  const auto sent = std::chrono::steady_clock::now();
  host.Send("MCVU3\r");
  EXPECT_EQ(host.Read(10), "0.015385\r\n");
  EXPECT_THAT(std::chrono::steady_clock::now() - sent, Ge(16 * 86us));
}

TEST(McuSerial, BlocksAWriterWhileItDoesNotRead) {
  McuSerial serial;
  const Host host(serial);
  serial.StopReading(true);
  ASSERT_EQ(fcntl(host.port(), F_SETFL, O_NONBLOCK), 0);
  size_t accepted = 0;
  while (host.Send("WDTR\r") && accepted < 100000) ++accepted;
  EXPECT_FALSE(host.Send("x"));
  EXPECT_EQ(errno, EAGAIN);
  EXPECT_LT(accepted, 100000U);
  EXPECT_THAT(serial.CommandsReceived(), ElementsAre());
  serial.StopReading(false);
  EXPECT_TRUE(serial.WaitForCommand("WDTR", kPatience, accepted));
}

TEST(McuSerial, KeepsBytesForOneProgramFromTheNext) {
  McuSerial serial;
  serial.SendRaw("to nobody\r\n");
  {
    const Host first(serial);
    first.Send("MCBG\r");
    EXPECT_EQ(first.Read(4), "03\r\n");
    serial.SendRaw("unread");
    pollfd source{first.port(), POLLIN, 0};
    ASSERT_EQ(poll(&source, 1, std::chrono::milliseconds(kPatience).count()), 1);
    EXPECT_FALSE(serial.WaitForHostClosed(0ms));
  }
  ASSERT_TRUE(serial.WaitForHostClosed(kPatience));
  const Host second(serial);
  second.Send("WDTG\r");
  EXPECT_EQ(second.Read(6), "003C\r\n");
  EXPECT_TRUE(second.HasNothingToRead());
}

TEST(McuSerial, HangsUpAndComesBackWithItsState) {
  McuSerial serial;
  serial.WithModel([](McuModel& mcu) { mcu.watchdog.time = 0x1234; });
  {
    const Host host(serial);
    serial.HangUp();
    char byte = 0;
    EXPECT_EQ(read(host.port(), &byte, 1), 0);
    EXPECT_FALSE(host.Send("x"));
    EXPECT_EQ(errno, EIO);
  }
  serial.Reopen();
  const Host again(serial);
  again.Send("WDTG\r");
  EXPECT_EQ(again.Read(6), "1234\r\n");
}

}  // namespace
}  // namespace rolu_sim
