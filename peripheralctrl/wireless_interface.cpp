#include "peripheralctrl/wireless_interface.h"

#include <cstdio>
#include <cstring>

#include "core/device_file.h"

namespace {

FILE* StartCommand(const char* line) {
  FILE* command = popen(line, "r");
  if (command != nullptr) SetCloseOnExec(fileno(command));
  return command;
}

}  // namespace

bool SetWirelessInterface(bool up) {
  FILE* command = StartCommand(up ? "ifconfig wlan0 up" : "ifconfig wlan0 down");
  if (command == nullptr) return false;
  pclose(command);
  return true;
}

bool GetWirelessInterface(bool& up) {
  constexpr char kName[] = "wlan0";
  FILE* command = StartCommand("ifconfig | grep wlan0");
  if (command == nullptr) return false;
  char output[sizeof kName] = {};
  [[maybe_unused]] const size_t count = fread(output, 1, sizeof kName - 1, command);
  pclose(command);
  up = strcmp(output, kName) == 0;
  return true;
}
