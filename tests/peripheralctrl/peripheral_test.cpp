// The peripherals that the MCU does not switch: a GPIO line and a network interface.
#include <unistd.h>

#include <fstream>

#include "kavo_rolu.h"
#include "tests/support/call_table.h"
#include "tests/support/signal_handler.h"

namespace rolu_test {
namespace {

Call Set(PERIPHERAL_TYPE type, char state) {
  return [=](void*) { return KAVO_ROLU_PERIPHERALCTRL_SetPeripheralControl(type, state); };
}

CallRow Is(const char* name, PERIPHERAL_TYPE type, char state) {
  const auto get = [type](void* output) {
    return KAVO_ROLU_PERIPHERALCTRL_GetPeripheralControl(type, static_cast<char*>(output));
  };
  return Gives(name, get, {}, Written(state));
}

TEST_F(PeripheralTest, GpsPowerIsAGpioLine) {
  BringUp();
  EXPECT_EQ(board().devices().Writes("/sys/class/gpio/export"), std::vector<std::string>{"45"});
  EXPECT_EQ(board().devices().Writes("/sys/class/gpio/gpio45/direction"), std::vector<std::string>{"out"});
  Run({{"on", Set(PERIPHERAL_TYPE_GPS, 1)},
       Is("on", PERIPHERAL_TYPE_GPS, 1),
       {"only 1 is on", Set(PERIPHERAL_TYPE_GPS, 2)},
       Is("off", PERIPHERAL_TYPE_GPS, 0)});
  EXPECT_EQ(board().devices().Writes("/sys/class/gpio/gpio45/value"), (std::vector<std::string>{"1", "0"}));
}

TEST_F(PeripheralTest, GpsLineIsPreparedEvenWithoutAnMcu) {
  board().RemoveSerialDevice();
  EXPECT_EQ(KAVO_ROLU_PERIPHERALCTRL_Initialize(), ROLU_STATUS_VPM_OPEN_FAILED);
  EXPECT_EQ(board().devices().Writes("/sys/class/gpio/gpio45/direction"), std::vector<std::string>{"out"});
}

TEST_F(PeripheralTest, WirelessInterfaceIsSwitchedByTheSystem) {
  BringUp();
  Run({{"up", Set(PERIPHERAL_TYPE_WLAN, 1)},
       Is("up", PERIPHERAL_TYPE_WLAN, 1),
       {"only 1 is up", Set(PERIPHERAL_TYPE_WLAN, 3)},
       Is("down", PERIPHERAL_TYPE_WLAN, 0)});
}

TEST_F(PeripheralTest, SignalsDoNotCutTheWirelessQueryShort) {
  HandleSignal(SIGUSR1);
  // The command sends the signals while the library waits for the command's output.
  std::ofstream(board().root().CommandDirectory() + "/ifconfig")
      << "#!/bin/sh\nfor i in 1 2 3 4 5; do kill -USR1 " << getpid() << "; sleep 0.02; done\n"
      << "echo 'wlan0: flags=4163<UP,BROADCAST,RUNNING,MULTICAST>  mtu 1500'\n";
  BringUp();
  Run({Is("up", PERIPHERAL_TYPE_WLAN, 1)});
  EXPECT_GT(signals_handled, 0);
}

}  // namespace
}  // namespace rolu_test
