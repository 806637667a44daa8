// How managers come up and go down, on the simulated board.
#include <gmock/gmock.h>

#include <string>
#include <thread>
#include <vector>

#include "core/process_locks.h"
#include "kavo_rolu.h"
#include "mcu/link.h"
#include "mcu/link_state.h"
#include "simulator/board.h"
#include "tests/support/process_state.h"
#include "vpm/vpm_manager.h"
#include "watchdog/watchdog_manager.h"

namespace {

using rolu_sim::CommandMatch;
using testing::ElementsAre;

class AttachedBoard : public testing::Test {
 protected:
  AttachedBoard() { board.AttachThisProcess(); }
  rolu_sim::Board board;
};

int Users() {
  const ScopedLock lock(*io_op_lock);
  return vpm_ref_count;
}

TEST_F(AttachedBoard, RepeatedInitializeSendsNothing) {
  EXPECT_EQ(KAVO_ROLU_WD_Deinitialize(), ROLU_STATUS_NOT_INITIALIZED);
  EXPECT_EQ(KAVO_ROLU_WD_Initialize(0), ROLU_STATUS_SUCCESS);
  EXPECT_EQ(KAVO_ROLU_WD_Initialize(0), ROLU_STATUS_ALREADY_INITIALIZED);
  EXPECT_EQ(KAVO_ROLU_WD_Trigger(), ROLU_STATUS_SUCCESS);
  EXPECT_THAT(board.mcu().CommandsReceived(), ElementsAre("Hello", "WDTR"));
  EXPECT_EQ(Users(), 1);
  EXPECT_EQ(KAVO_ROLU_WD_Deinitialize(), ROLU_STATUS_SUCCESS);
  EXPECT_TRUE(board.mcu().WaitForHostClosed(kGenerous));
  EXPECT_EQ(KAVO_ROLU_WD_Deinitialize(), ROLU_STATUS_NOT_INITIALIZED);
}

TEST_F(AttachedBoard, GreetingNeedsNoGoodAnswer) {
  board.mcu().Script(CommandMatch::Exactly("Hello"), rolu_sim::Reply::Line("ERR-C01"));
  EXPECT_EQ(KAVO_ROLU_WD_Initialize(0), ROLU_STATUS_SUCCESS);
  EXPECT_EQ(KAVO_ROLU_WD_Deinitialize(), ROLU_STATUS_SUCCESS);
  board.mcu().Script(CommandMatch::Exactly("Hello"), rolu_sim::Reply::Silence());
  EXPECT_EQ(KAVO_ROLU_WD_Initialize(0), ROLU_STATUS_SUCCESS);
  EXPECT_EQ(KAVO_ROLU_WD_Trigger(), ROLU_STATUS_SUCCESS);
  EXPECT_EQ(KAVO_ROLU_WD_Deinitialize(), ROLU_STATUS_SUCCESS);
}

TEST_F(AttachedBoard, AbsentPortCanComeLater) {
  board.RemoveSerialDevice();
  EXPECT_EQ(KAVO_ROLU_VPM_Initialize(0), ROLU_STATUS_VPM_OPEN_FAILED);
  EXPECT_EQ(KAVO_ROLU_WD_Initialize(0), ROLU_STATUS_VPM_OPEN_FAILED);
  EXPECT_EQ(KAVO_ROLU_WD_Deinitialize(), ROLU_STATUS_NOT_INITIALIZED);
  board.RestoreSerialDevice();
  EXPECT_EQ(KAVO_ROLU_VPM_Initialize(0), ROLU_STATUS_SUCCESS);
  EXPECT_EQ(KAVO_ROLU_WD_Initialize(0), ROLU_STATUS_SUCCESS);
  EXPECT_EQ(Users(), 2);
  EXPECT_EQ(KAVO_ROLU_WD_Deinitialize(), ROLU_STATUS_SUCCESS);
  EXPECT_EQ(KAVO_ROLU_VPM_Deinitialize(), ROLU_STATUS_SUCCESS);
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

// A turn that takes longer than the link's own limit for its close.
TEST_F(AttachedBoard, FamilyGoesDownEvenBehindALongCommand) {
  ASSERT_EQ(KAVO_ROLU_WD_Initialize(0), ROLU_STATUS_SUCCESS);
  ASSERT_EQ(KAVO_ROLU_VPM_Initialize(0), ROLU_STATUS_SUCCESS);
  board.mcu().Script(CommandMatch::Exactly("WDTR"), rolu_sim::Reply::Silence());
  std::thread slow([] { EXPECT_EQ(KAVO_ROLU_WD_Trigger(), ROLU_STATUS_VPM_NO_REPLY); });
  ASSERT_TRUE(board.mcu().WaitForCommand("WDTR", kGenerous));
  EXPECT_EQ(KAVO_ROLU_VPM_Deinitialize(), ROLU_STATUS_SUCCESS);
  slow.join();
  EXPECT_EQ(Users(), 1);
  EXPECT_EQ(KAVO_ROLU_WD_Deinitialize(), ROLU_STATUS_SUCCESS);
  EXPECT_TRUE(board.mcu().WaitForHostClosed(kGenerous));
}

}  // namespace
