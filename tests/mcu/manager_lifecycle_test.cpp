// How managers come up and go down, on the simulated board.
#include <gmock/gmock.h>
#include <pthread.h>

#include <chrono>
#include <cstdio>
#include <string>
#include <thread>
#include <vector>

#include "kavo_rolu.h"
#include "mcu/link.h"
#include "mcu/link_state.h"
#include "mcu/transaction.h"
#include "mcu/turn.h"
#include "simulator/board.h"
#include "tests/support/process_state.h"
#include "vpm/vpm_manager.h"
#include "watchdog/watchdog_manager.h"

namespace {

using rolu_sim::CommandMatch;

class AttachedBoard : public testing::Test {
 protected:
  AttachedBoard() { board.AttachThisProcess(); }
  rolu_sim::Board board;
};

int Users() {
  const ScopedLock lock(*io_op_lock);
  return vpm_ref_count;
}

TEST_F(AttachedBoard, StartUpThatFailsHalfWayGivesBackWhatItTook) {
  const struct {
    const char* command;
    rolu_sim::Reply reply;
    uint32_t status;
  } rows[] = {
      {"ATF0", rolu_sim::Reply::Silence(), ROLU_STATUS_VPM_NO_REPLY},
      {"MCPR3", rolu_sim::Reply::Line("ERR-B01"), ROLU_STATUS_VPM_ERROR_REPLY},
      {"MCPR2", rolu_sim::Reply::Line("ERR-M08"), ROLU_STATUS_INVALID_PARAMETER},
  };
  char error_reply[] = "ERR-M08";
  ASSERT_EQ(gWDMgr.Initialize(0), ROLU_STATUS_SUCCESS);
  for (const auto& row : rows) {
    SCOPED_TRACE(row.command);
    board.mcu().Script(CommandMatch::Exactly(row.command), row.reply);
    EXPECT_EQ(gVPMMgr.Initialize(0), row.status);
    EXPECT_EQ(Users(), 1) << "the watchdog's";
    EXPECT_EQ(gVPMMgr.VPMErrorCheck(error_reply), 0) << "the table is gone";
    EXPECT_EQ(gVPMMgr.Deinitialize(), ROLU_STATUS_NOT_INITIALIZED);
  }
  EXPECT_EQ(gWDMgr.Deinitialize(), ROLU_STATUS_SUCCESS);
  EXPECT_TRUE(board.mcu().WaitForHostClosed(kGenerous));
  EXPECT_EQ(gVPMMgr.Initialize(0), ROLU_STATUS_SUCCESS);
  EXPECT_EQ(gVPMMgr.VPMErrorCheck(error_reply), 0x304);
  EXPECT_EQ(gVPMMgr.Deinitialize(), ROLU_STATUS_SUCCESS);
  EXPECT_EQ(gVPMMgr.VPMErrorCheck(error_reply), 0);
}

void* BringUpAndEnd(void* status) {
  *static_cast<ROLU_STATUS*>(status) = KAVO_ROLU_VPM_Initialize(0);
  pthread_testcancel();
  return nullptr;
}

// The line with the firmware's version is written, so that a cancelled thread could end there.
TEST_F(AttachedBoard, CancelledThreadBringsItsFamilyUpFirst) {
  setvbuf(stdout, nullptr, _IOLBF, 0);
  board.mcu().Script(CommandMatch::Exactly("ATF0"),
                     rolu_sim::Reply::Line("*VER:001.010*", std::chrono::milliseconds(200)));
  ROLU_STATUS status = ROLU_STATUS_NOT_INITIALIZED;
  pthread_t thread;
  ASSERT_EQ(pthread_create(&thread, nullptr, BringUpAndEnd, &status), 0);
  EXPECT_TRUE(board.mcu().WaitForCommand("ATF0", kGenerous));
  EXPECT_EQ(pthread_cancel(thread), 0);
  void* result = nullptr;
  ASSERT_EQ(pthread_join(thread, &result), 0);
  EXPECT_EQ(result, PTHREAD_CANCELED);
  EXPECT_EQ(status, ROLU_STATUS_SUCCESS);
  EXPECT_EQ(KAVO_ROLU_VPM_Deinitialize(), ROLU_STATUS_SUCCESS);
  EXPECT_TRUE(board.mcu().WaitForHostClosed(kGenerous));
}

// The turn of another thread takes longer than the 2 s that a close waits.
TEST_F(AttachedBoard, FamilyGoesDownInTimeAndThePortIsClosedLater) {
  const ProcessState before;
  for (int round = 0; round < 2; ++round) {
    ASSERT_EQ(KAVO_ROLU_WD_Initialize(0), ROLU_STATUS_SUCCESS) << "a close that was owed takes no other";
    {
      const Turn held;
      const auto start = std::chrono::system_clock::now();
      std::thread leaving([] { EXPECT_EQ(KAVO_ROLU_WD_Deinitialize(), ROLU_STATUS_SUCCESS); });
      leaving.join();
      EXPECT_GE(std::chrono::system_clock::now() - start, std::chrono::milliseconds(2000));
      EXPECT_EQ(KAVO_ROLU_WD_Trigger(), ROLU_STATUS_NOT_INITIALIZED);
      EXPECT_EQ(Users(), 1);
    }
    EXPECT_TRUE(board.mcu().WaitForHostClosed(kGenerous));
    EXPECT_EQ(LeftSince(before), "");
  }
}

TEST_F(AttachedBoard, FamiliesThatGoDownAtOnceBehindOneSilentCommandCloseThePort) {
  const ProcessState before;
  ASSERT_EQ(KAVO_ROLU_WD_Initialize(0), ROLU_STATUS_SUCCESS);
  ASSERT_EQ(KAVO_ROLU_VPM_Initialize(0), ROLU_STATUS_SUCCESS);
  ASSERT_EQ(KAVO_ROLU_GSENSOR_Initialize(0), ROLU_STATUS_SUCCESS);
  ASSERT_EQ(KAVO_ROLU_PERIPHERALCTRL_Initialize(), ROLU_STATUS_SUCCESS);
  ASSERT_EQ(Users(), 4);
  board.mcu().Script(CommandMatch::Exactly("SILENT"), rolu_sim::Reply::Silence());
  std::vector<std::thread> threads;
  threads.emplace_back([] {
    char reply[kLineCapacity];
    EXPECT_EQ(RunTransaction(nullptr, "SILENT\r", 7, reply, sizeof reply, 0), ROLU_STATUS_VPM_NO_REPLY);
  });
  ASSERT_TRUE(board.mcu().WaitForCommand("SILENT", kGenerous));
  for (const auto deinitialize : {KAVO_ROLU_WD_Deinitialize, KAVO_ROLU_VPM_Deinitialize,
                                  KAVO_ROLU_GSENSOR_Deinitialize, KAVO_ROLU_PERIPHERALCTRL_Deinitialize}) {
    threads.emplace_back([deinitialize] { EXPECT_EQ(deinitialize(), ROLU_STATUS_SUCCESS); });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_TRUE(board.mcu().WaitForHostClosed(kGenerous));
  EXPECT_EQ(LeftSince(before), "");
}

}  // namespace
