#include <signal.h>
#include <unistd.h>

#include <cerrno>
#include <fstream>

#include "kavo_rolu.h"
#include "tests/support/call_table.h"

namespace rolu_test {
namespace {

constexpr ROLU_STATUS kDone = ROLU_STATUS_SUCCESS;
constexpr ROLU_STATUS kDown = ROLU_STATUS_NOT_INITIALIZED;
constexpr ROLU_STATUS kNotSupported = ROLU_STATUS_NOT_SUPPORTED;

constexpr char kValueFile[] = "/sys/class/gpio/gpio45/value";

class PeripheralTest : public CallTableTest {
 protected:
  PeripheralTest()
      : CallTableTest({KAVO_ROLU_PERIPHERALCTRL_Initialize, KAVO_ROLU_PERIPHERALCTRL_Deinitialize}) {}
};

Call Set(int type, int state) {
  return [=](void*) {
    return KAVO_ROLU_PERIPHERALCTRL_SetPeripheralControl(static_cast<PERIPHERAL_TYPE>(type),
                                                         static_cast<char>(state));
  };
}
Call Get(int type) {
  return [=](void* state) {
    return KAVO_ROLU_PERIPHERALCTRL_GetPeripheralControl(static_cast<PERIPHERAL_TYPE>(type),
                                                         static_cast<char*>(state));
  };
}
Bytes State(char state) {
  return Written(state);
}

// The rear-view operations, which the board does not provide.
std::vector<CallRow> RearView(ROLU_STATUS status) {
  return {{"set source", With(KAVO_ROLU_PERIPHERALCTRL_SetRearViewSource, 1), {}, status},
          {"get source", Into(KAVO_ROLU_PERIPHERALCTRL_GetRearViewSource), {}, status},
          {"get source, null", Into(KAVO_ROLU_PERIPHERALCTRL_GetRearViewSource), {}, status, {}, "", 0, true},
          {"set automatic", With(KAVO_ROLU_PERIPHERALCTRL_SetAutoRearView, 1), {}, status},
          {"get automatic", Into(KAVO_ROLU_PERIPHERALCTRL_GetAutoRearView), {}, status},
          {"version", With(KAVO_ROLU_PERIPHERALCTRL_GetLibVersion, nullptr), {}, kNotSupported}};
}

TEST_F(PeripheralTest, RearViewIsNotProvidedAndTheStateComesFirst) {
  Run(RearView(kDown));
  Run({{"set 10", Set(10, 1), {}, kDown}, {"get, null", Get(0), {}, kDown, {}, "", 0, true}});
  BringUp();
  Run(RearView(kNotSupported));
  Run({Orders("a state goes out as it is", Set(0, 12), {"OK"}, "MCS012\r", 500),
       Orders("as unsigned", Set(0, -1), {"OK"}, "MCS0255\r", 500)});
}

TEST_F(PeripheralTest, TypesAreJudgedBeforeAnythingHappens) {
  BringUp();
  for (const int type : {3, 9, -1}) Run({{"set " + std::to_string(type), Set(type, 1), {}, kNotSupported}});
  for (const int type : {3, 9, 10, -1}) {
    Run({{"get " + std::to_string(type), Get(type), {}, kNotSupported},
         {"get, null " + std::to_string(type), Get(type), {}, kNotSupported, {}, "", 0, true}});
  }
  board().devices().ClearAccesses();
  Run({{"set 10", Set(10, 1), {}, ROLU_STATUS_INVALID_PARAMETER}});
  for (const int type : {0, 1, 2}) {
    Run({{"null " + std::to_string(type), Get(type), {}, ROLU_STATUS_INVALID_PARAMETER, {}, "", 0, true}});
  }
  EXPECT_TRUE(board().devices().Accesses().empty());
}

TEST_F(PeripheralTest, GpsPowerIsAGpioLine) {
  BringUp();
  EXPECT_EQ(board().devices().Writes("/sys/class/gpio/export"), std::vector<std::string>{"45"});
  EXPECT_EQ(board().devices().Writes("/sys/class/gpio/gpio45/direction"), std::vector<std::string>{"out"});
  Run({{"on", Set(2, 1), {}, kDone},
       {"is on", Get(2), {}, kDone, State(1)},
       {"only 1 is on", Set(2, 2), {}, kDone},
       {"is off", Get(2), {}, kDone, State(0)}});
  EXPECT_EQ(board().devices().Writes(kValueFile), (std::vector<std::string>{"1", "0"}));
}

TEST_F(PeripheralTest, GpsLineIsPreparedEvenWithoutAnMcu) {
  board().RemoveSerialDevice();
  EXPECT_EQ(KAVO_ROLU_PERIPHERALCTRL_Initialize(), ROLU_STATUS_VPM_OPEN_FAILED);
  EXPECT_EQ(board().devices().Writes("/sys/class/gpio/gpio45/direction"), std::vector<std::string>{"out"});
}

TEST_F(PeripheralTest, WirelessInterfaceIsSwitchedByTheSystem) {
  BringUp();
  Run({{"up", Set(1, 1), {}, kDone},
       {"is up", Get(1), {}, kDone, State(1)},
       {"only 1 is up", Set(1, 3), {}, kDone},
       {"is down", Get(1), {}, kDone, State(0)}});
}

// Sends signals to a process while it waits for the output.
constexpr char kInterruptingIfconfig[] = R"(#!/bin/sh
for i in 1 2 3 4 5; do kill -USR1 %PID%; sleep 0.02; done
echo 'wlan0: flags=4163<UP,BROADCAST,RUNNING,MULTICAST>  mtu 1500'
)";

TEST_F(PeripheralTest, SignalsDoNotCutTheWirelessQueryShort) {
  static volatile sig_atomic_t handled = 0;
  handled = 0;
  struct sigaction action {};
  action.sa_handler = [](int) { handled = handled + 1; };  // without SA_RESTART
  struct sigaction before {};
  ASSERT_EQ(sigaction(SIGUSR1, &action, &before), 0);

  std::string script = kInterruptingIfconfig;
  script.replace(script.find("%PID%"), 5, std::to_string(getpid()));
  std::ofstream(board().root().CommandDirectory() + "/ifconfig") << script;
  BringUp();
  Run({{"is up", Get(1), {}, kDone, State(1)}});
  EXPECT_GT(handled, 0);
  sigaction(SIGUSR1, &before, nullptr);
}

}  // namespace
}  // namespace rolu_test
