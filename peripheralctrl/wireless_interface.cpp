#include "peripheralctrl/wireless_interface.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "core/device_file.h"

namespace {

FILE* StartCommand(const char* line) {
  FILE* command = popen(line, "r");
  if (command != nullptr) SetCloseOnExec(fileno(command));
  return command;
}

// Reads on after a signal. Its handler interrupts the wait for the command's output, and without that output
// an interface that is up would count as down.
void ReadOutput(FILE* command, char* output, size_t size) {
  size_t count = 0;
  while (count < size) {
    errno = 0;
    const size_t more = fread(output + count, 1, size - count, command);
    count += more;
    if (more > 0) continue;
    if (ferror(command) == 0 || errno != EINTR) return;
    clearerr(command);
  }
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
  ReadOutput(command, output, sizeof kName - 1);
  pclose(command);
  up = strcmp(output, kName) == 0;
  return true;
}
