#pragma once

#include <array>

namespace rolu_sim {

// The paths of the board's hardware, all that the preloaded object redirects. The serial port is a path
// inside the board root. The board's device server answers for all other nodes, and for the attributes of the
// GPIO lines: /sys/class/gpio/gpio37/value and so on.
inline constexpr char kSerialPath[] = "/proc/vpm_serial";
inline constexpr char kI2cBusPath[] = "/dev/i2c-3";
inline constexpr char kGpioDirectory[] = "/sys/class/gpio";
inline constexpr char kGpioExportPath[] = "/sys/class/gpio/export";
inline constexpr std::array<const char*, 2> kGpioAttributes = {"direction", "value"};
inline constexpr char kBacklightPath[] = "/sys/devices/omapdss/display0/backlight/vorn512p/brightness";
inline constexpr char kLuxPath[] =
    "/sys/devices/platform/ehci-omap.0/usb1/1-2/1-2.4/1-2.4:1.3/ttyUSB3/tty/ttyUSB3/serio1/lux";

// The directories that hold only nodes of the board. /dev, /proc and the upper directories of /sys stay the
// system's and do not list the board's nodes.
inline constexpr std::array<const char*, 3> kBoardDirectories = {
    kGpioDirectory,
    "/sys/devices/omapdss",
    "/sys/devices/platform/ehci-omap.0",
};

// The environment variable that tells the preloaded object where the board root is, and the names of the
// parts in the board root. The last one is a copy of the board's directories with an empty file for each
// node: a program that lists a directory sees this copy.
inline constexpr char kRootVariable[] = "ROLU_SIM_ROOT";
inline constexpr char kSerialLinkName[] = "/proc/vpm_serial";
inline constexpr char kCommandDirectoryName[] = "/bin";
inline constexpr char kDeviceSocketName[] = "/devices";
inline constexpr char kControlSocketName[] = "/control";
inline constexpr char kWirelessStateName[] = "/wlan0-up";
inline constexpr char kShownDirectory[] = "/shown";

// In the board root: links to the preloaded objects, where an emulated program needs one that is not its
// children's.
inline constexpr char kObjectDirectory[] = "/lib";

}  // namespace rolu_sim
