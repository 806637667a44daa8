// A program may start another program at any time, even while one of its threads is in a call of the library.
// The other program must not inherit what the library has open then.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <future>
#include <memory>
#include <set>
#include <string>
#include <system_error>

#include "kavo_rolu.h"
#include "simulator/board.h"
#include "simulator/system/unique_fd.h"
#include "tests/support/process_state.h"
#include "tests/support/text_node.h"

namespace {

using Descriptors = std::set<std::string>;

// The descriptors of this process that an executed program inherits.
Descriptors InheritableDescriptors() {
  Descriptors inheritable;
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
    const int flags = fcntl(std::stoi(entry.path().filename()), F_GETFD);
    std::error_code closed_meanwhile;
    const auto file = std::filesystem::read_symlink(entry.path(), closed_meanwhile);
    if (flags != -1 && (flags & FD_CLOEXEC) == 0 && !closed_meanwhile) inheritable.insert(file);
  }
  return inheritable;
}

// Whether no further descriptor is inheritable. The library marks a descriptor after it has opened it, so
// this waits.
bool IsNothingInherited(const Descriptors& before) {
  return WaitUntil([&] {
    const Descriptors now = InheritableDescriptors();
    return std::includes(before.begin(), before.end(), now.begin(), now.end());
  });
}

ROLU_STATUS ReadRegister() {
  unsigned char value = 0;
  ROLU_IIC_TRANSFER transfer = {0, 0xA0, &value, 1, nullptr, 0};
  return KAVO_ROLU_IIC_Read(&transfer);
}

TEST(CloseOnExec, HoldsForDeviceFiles) {
  const struct {
    const char* path;
    ROLU_STATUS (*call)();
  } kRows[] = {
      {rolu_sim::kLuxPath,
       [] {
         unsigned short lux = 0;
         return KAVO_ROLU_LIGHTSENSOR_GetStatus(&lux);
       }},
      {rolu_sim::kGpioExportPath, KAVO_ROLU_DIO_Initialize},
      {rolu_sim::kI2cBusPath, ReadRegister},
  };
  rolu_sim::Board board;
  board.AttachThisProcess();
  ASSERT_EQ(KAVO_ROLU_CORE_Init(), ROLU_STATUS_SUCCESS);
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.path);
    // The device checks the process while the library has the device open.
    std::atomic<int> looks{0};
    const auto look = [&looks, before = InheritableDescriptors()] {
      EXPECT_TRUE(IsNothingInherited(before));
      ++looks;
    };
    board.devices().AddNode(row.path, std::make_shared<rolu_test::TextNode>("1", 0, look));
    row.call();
    EXPECT_GT(looks, 0);
    ASSERT_FALSE(HasFailure());
  }
  EXPECT_EQ(KAVO_ROLU_CORE_DeInit(), ROLU_STATUS_SUCCESS);
}

// The command waits until the gate has been opened and closed again.
constexpr char kWaitingIfconfig[] = R"(#!/bin/sh
cat "${0%/*}/gate"
echo 'wlan0: flags=4163<UP,BROADCAST,RUNNING,MULTICAST>  mtu 1500'
)";

TEST(CloseOnExec, HoldsForTheOutputOfAShellCommand) {
  rolu_sim::Board board;
  board.AttachThisProcess();
  const std::string commands = board.root().CommandDirectory();
  std::ofstream(commands + "/ifconfig") << kWaitingIfconfig;
  const std::string gate = commands + "/gate";
  ASSERT_EQ(mkfifo(gate.c_str(), 0600), 0);
  ASSERT_EQ(KAVO_ROLU_PERIPHERALCTRL_Initialize(), ROLU_STATUS_SUCCESS);

  const Descriptors before = InheritableDescriptors();
  char state = 0;
  auto call = std::async(std::launch::async, [&] {
    return KAVO_ROLU_PERIPHERALCTRL_GetPeripheralControl(PERIPHERAL_TYPE_WLAN, &state);
  });
  {
    const rolu_sim::UniqueFd the_command_runs(open(gate.c_str(), O_WRONLY | O_CLOEXEC));
    EXPECT_TRUE(IsNothingInherited(before));
  }
  EXPECT_EQ(call.get(), ROLU_STATUS_SUCCESS);
  EXPECT_EQ(state, 1);
  EXPECT_EQ(KAVO_ROLU_PERIPHERALCTRL_Deinitialize(), ROLU_STATUS_SUCCESS);
}

}  // namespace
