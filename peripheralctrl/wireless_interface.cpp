#include "peripheralctrl/wireless_interface.h"

#include <cstdio>
#include <cstring>

bool SetWirelessInterface(bool up) {
  FILE* command = popen(up ? "ifconfig wlan0 up" : "ifconfig wlan0 down", "r");
  if (command == nullptr) return false;
  pclose(command);
  return true;
}

bool GetWirelessInterface(bool& up) {
  constexpr char kName[] = "wlan0";
  FILE* command = popen("ifconfig | grep wlan0", "r");
  if (command == nullptr) return false;
  char output[sizeof kName] = {};
  [[maybe_unused]] const size_t count = fread(output, 1, sizeof kName - 1, command);
  pclose(command);
  up = strcmp(output, kName) == 0;
  return true;
}
