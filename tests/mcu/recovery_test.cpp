// After each fault the next call works on a healthy board, and nothing was lost on the way.
#include <gtest/gtest.h>

#include <ostream>
#include <string>

#include "kavo_rolu.h"
#include "mcu/link.h"
#include "mcu/link_state.h"
#include "simulator/board.h"
#include "tests/mcu/paused_link.h"
#include "tests/support/process_state.h"
#include "watchdog/watchdog_manager.h"

namespace {

using rolu_sim::Board;
using rolu_sim::CommandMatch;
using std::chrono::microseconds;

constexpr unsigned short kTime = 0x3C;

ROLU_STATUS AskTime() {
  unsigned short time = 0;
  const ROLU_STATUS status = KAVO_ROLU_WD_GetTime(&time);
  if (status == ROLU_STATUS_SUCCESS) {
    EXPECT_EQ(time, kTime);
  }
  return status;
}

// The fault strikes a watchdog family that is up, unless it is one of the start-up.
struct Fault {
  const char* name;
  bool while_up;
  void (*strike)(Board&);
};

void PrintTo(const Fault& fault, std::ostream* stream) {
  *stream << fault.name;
}

void AnswerTimeWith(Board& board, const rolu_sim::Reply& reply) {
  board.mcu().Script(CommandMatch::Exactly("WDTG"), reply);
}

void FailToStart(Board& board) {
  EXPECT_EQ(KAVO_ROLU_WD_Initialize(0), ROLU_STATUS_VPM_OPEN_FAILED);
  board.RestoreSerialDevice();
}

const Fault kFaults[] = {
    {"MissingPort", false,
     [](Board& board) {
       board.RemoveSerialDevice();
       FailToStart(board);
     }},
    {"PortIsNoTerminal", false,
     [](Board& board) {
       board.root().LinkSerialPort("/dev/null");
       FailToStart(board);
     }},
    {"FailedStartUp", false,
     [](Board& board) {
       board.mcu().Script(CommandMatch::Exactly("ATF0"), rolu_sim::Reply::Line("ERR-C01"));
       EXPECT_EQ(KAVO_ROLU_VPM_Initialize(0), ROLU_STATUS_VPM_ERROR_REPLY);
     }},
    {"SingleBytes", true,
     [](Board& board) {
       AnswerTimeWith(board, rolu_sim::Reply::Trickle("003C\r\n", microseconds(300)));
       EXPECT_EQ(AskTime(), ROLU_STATUS_SUCCESS);
     }},
    {"FullQueue", true,
     [](Board&) {
       char command[kTxCapacity] = {};
       char reply[kLineCapacity] = {};
       EXPECT_EQ(gWDMgr.GetDataFromSTM32(command, sizeof command, reply, sizeof reply),
                 ROLU_STATUS_VPM_SEND_FAILED);
     }},
    {"FailedWrite", true,
     [](Board& board) {
       board.mcu().HangUp();
       EXPECT_EQ(AskTime(), ROLU_STATUS_VPM_NO_REPLY);
       EXPECT_EQ(KAVO_ROLU_WD_Deinitialize(), ROLU_STATUS_SUCCESS);
       board.ReplugSerialPort();
       EXPECT_EQ(KAVO_ROLU_WD_Initialize(0), ROLU_STATUS_SUCCESS);
     }},
};

class Recovery : public testing::TestWithParam<Fault> {};

TEST_P(Recovery, NextCallWorksAndNothingLeaks) {
  Board board;
  board.AttachThisProcess();
  board.mcu().WithModel([](rolu_sim::McuModel& model) { model.watchdog.time = kTime; });
  const ProcessState before;
  if (GetParam().while_up) {
    ASSERT_EQ(KAVO_ROLU_WD_Initialize(0), ROLU_STATUS_SUCCESS);
  }
  GetParam().strike(board);
  if (!GetParam().while_up) {
    EXPECT_EQ(LeftSince(before), "") << "a failed start leaves nothing";
    ASSERT_EQ(KAVO_ROLU_WD_Initialize(0), ROLU_STATUS_SUCCESS);
  }
  EXPECT_EQ(AskTime(), ROLU_STATUS_SUCCESS);
  EXPECT_EQ(KAVO_ROLU_WD_Deinitialize(), ROLU_STATUS_SUCCESS);
  EXPECT_EQ(LeftSince(before), "");
}

INSTANTIATE_TEST_SUITE_P(After, Recovery, testing::ValuesIn(kFaults),
                         [](const auto& fault) { return std::string(fault.param.name); });

}  // namespace
