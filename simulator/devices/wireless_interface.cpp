#include "simulator/devices/wireless_interface.h"

#include <filesystem>
#include <fstream>

#include "simulator/devices/board_paths.h"
#include "simulator/system/system_error.h"

namespace rolu_sim {
namespace {

// The script finds the state file from its own directory. Without arguments it shows the interfaces that are
// up, like the system's command.
constexpr char kIfconfig[] = R"(#!/bin/sh
state="${0%/*}/../wlan0-up"

show_loopback() {
  echo 'lo: flags=73<UP,LOOPBACK,RUNNING>  mtu 65536'
  echo '        inet 127.0.0.1  netmask 255.0.0.0'
  echo
}

show_wlan0() {
  if [ -e "$state" ]; then
    echo 'wlan0: flags=4163<UP,BROADCAST,RUNNING,MULTICAST>  mtu 1500'
  else
    echo 'wlan0: flags=4098<BROADCAST,MULTICAST>  mtu 1500'
  fi
  echo '        ether 02:00:00:00:00:01  txqueuelen 1000  (Ethernet)'
  echo
}

case "$*" in
  '') show_loopback; if [ -e "$state" ]; then show_wlan0; fi ;;
  -a) show_loopback; show_wlan0 ;;
  lo) show_loopback ;;
  wlan0) show_wlan0 ;;
  'wlan0 up') : >"$state" ;;
  'wlan0 down') rm -f "$state" ;;
  *) echo "ifconfig: the simulated board knows no '$*'" >&2; exit 1 ;;
esac
)";

void WriteFile(const std::string& path, const char* text) {
  std::ofstream file(path);
  file << text;
  file.close();
  if (!file) ThrowErrno("writing " + path);
}

}  // namespace

WirelessInterface::WirelessInterface(const BoardRoot& root) : state_path_(root.path() + kWirelessStateName) {
  const std::string command = root.CommandDirectory() + "/ifconfig";
  WriteFile(command, kIfconfig);
  std::filesystem::permissions(command, std::filesystem::perms::owner_all);
}

bool WirelessInterface::IsUp() const {
  return std::filesystem::exists(state_path_);
}

void WirelessInterface::Set(bool up) const {
  if (up) {
    WriteFile(state_path_, "");
  } else {
    std::filesystem::remove(state_path_);
  }
}

}  // namespace rolu_sim
