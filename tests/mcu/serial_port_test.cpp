#include "mcu/serial_port.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <termios.h>

#include <cerrno>
#include <cstring>
#include <iterator>

#include "simulator/line/pseudo_terminal.h"
#include "simulator/system/unique_fd.h"

namespace {

// A port with the usual settings of a terminal.
class CookedPort : public testing::Test {
 protected:
  CookedPort() : port(Tovi_CreateFile(line.device_path().c_str(), O_RDWR | O_NOCTTY)) {
    EXPECT_TRUE(port);
    termios attributes = Attributes();
    attributes.c_iflag |= ICRNL | IXON | BRKINT;
    attributes.c_oflag |= OPOST | ONLCR;
    attributes.c_lflag |= ECHO | ICANON | ISIG | IEXTEN;
    attributes.c_cflag |= CSTOPB | CRTSCTS;
    cfsetispeed(&attributes, B9600);
    cfsetospeed(&attributes, B9600);
    EXPECT_EQ(tcsetattr(port.get(), TCSANOW, &attributes), 0);
  }

  termios Attributes() const {
    termios attributes{};
    EXPECT_EQ(tcgetattr(port.get(), &attributes), 0);
    return attributes;
  }

  // Whether this system's terminals support the speed at all.
  static bool PlatformKeeps(speed_t constant) {
    const rolu_sim::PseudoTerminal other;
    const rolu_sim::UniqueFd port(open(other.device_path().c_str(), O_RDWR | O_NOCTTY));
    termios attributes{};
    tcgetattr(port.get(), &attributes);
    cfsetispeed(&attributes, constant);
    cfsetospeed(&attributes, constant);
    tcsetattr(port.get(), TCSANOW, &attributes);
    tcgetattr(port.get(), &attributes);
    return cfgetospeed(&attributes) == constant;
  }

  rolu_sim::PseudoTerminal line;
  rolu_sim::UniqueFd port;
};

TEST_F(CookedPort, TakesTheListedSpeedsAndRawMode) {
  const struct {
    unsigned long bits_per_second;
    speed_t constant;
  } speeds[] = {{300, B300},       {600, B600},       {1800, B1800},    {2400, B2400},   {4800, B4800},
                {9600, B9600},     {19200, B19200},   {38400, B38400},  {57600, B57600}, {115200, B115200},
                {230400, B230400}, {460800, B460800}, {921600, B921600}};
  size_t kept = 0;
  for (const auto& speed : speeds) {
    SCOPED_TRACE(speed.bits_per_second);
    // The emulator of the board's processor does not know the fastest speed.
    if (!PlatformKeeps(speed.constant)) continue;
    ++kept;
    EXPECT_EQ(Tovi_SetCommState(port.get(), speed.bits_per_second), 1);
    const termios attributes = Attributes();
    EXPECT_EQ(cfgetispeed(&attributes), speed.constant);
    EXPECT_EQ(cfgetospeed(&attributes), speed.constant);
  }
  EXPECT_GE(kept, std::size(speeds) - 1);
  const termios raw = Attributes();
  EXPECT_EQ(raw.c_iflag & static_cast<tcflag_t>(ICRNL | IXON | BRKINT | ISTRIP | INLCR | IGNCR), 0U);
  EXPECT_EQ(raw.c_oflag & static_cast<tcflag_t>(OPOST), 0U);
  EXPECT_EQ(raw.c_lflag & static_cast<tcflag_t>(ECHO | ICANON | ISIG | IEXTEN), 0U);
  EXPECT_EQ(raw.c_cflag & static_cast<tcflag_t>(CSIZE | PARENB), static_cast<tcflag_t>(CS8));
  EXPECT_EQ(raw.c_cflag & (CSTOPB | CRTSCTS), CSTOPB | CRTSCTS) << "nothing else changes";
}

TEST_F(CookedPort, RefusedSpeedLeavesThePortAsItWas) {
  const termios before = Attributes();
  for (const unsigned long speed : {0UL, 1200UL, 115201UL}) {
    EXPECT_EQ(Tovi_SetCommState(port.get(), speed), 0) << speed;
    const termios after = Attributes();
    EXPECT_EQ(memcmp(&after, &before, sizeof before), 0) << speed;
  }
}

TEST(SerialPort, WhatIsNoTerminalStaysOpen) {
  const rolu_sim::UniqueFd file(Tovi_CreateFile("/dev/null", O_RDWR));
  errno = 0;
  EXPECT_EQ(Tovi_SetCommState(file.get(), 115200), 0);
  EXPECT_EQ(errno, ENOTTY);
  EXPECT_NE(fcntl(file.get(), F_GETFD), -1);
}

TEST(SerialPort, AddsNoFlagToTheOpen) {
  const rolu_sim::UniqueFd file(Tovi_CreateFile("/dev/null", O_RDWR));
  EXPECT_EQ(fcntl(file.get(), F_GETFL) & (O_ACCMODE | O_NONBLOCK | O_APPEND), O_RDWR);
  EXPECT_EQ(Tovi_CreateFile("/nowhere/vpm_serial", O_RDWR), -1);
  EXPECT_EQ(errno, ENOENT);
}

}  // namespace
