#pragma once

#include <array>

namespace rolu_sim {

// The paths of the board's hardware, all that the preloaded object redirects. The serial port is a path
// inside the board root; the others are nodes that the board's device server answers for, as are the
// attributes of the GPIO lines: /sys/class/gpio/gpio37/value and so on.
inline constexpr char kSerialPath[] = "/proc/vpm_serial";
inline constexpr char kI2cBusPath[] = "/dev/i2c-3";
inline constexpr char kGpioDirectory[] = "/sys/class/gpio";
inline constexpr char kGpioExportPath[] = "/sys/class/gpio/export";
inline constexpr std::array<const char*, 2> kGpioAttributes = {"direction", "value"};
inline constexpr char kBacklightPath[] = "/sys/devices/omapdss/display0/backlight/vorn512p/brightness";
inline constexpr char kLuxPath[] =
    "/sys/devices/platform/ehci-omap.0/usb1/1-2/1-2.4/1-2.4:1.3/ttyUSB3/tty/ttyUSB3/serio1/lux";

// The directories that hold nothing but such nodes. /dev, /proc and the upper directories of /sys are the
// system's, and do not list what is the board's.
inline constexpr std::array<const char*, 3> kBoardDirectories = {
    kGpioDirectory,
    "/sys/devices/omapdss",
    "/sys/devices/platform/ehci-omap.0",
};

// The environment variable that tells the preloaded object where the board root is, and the names in it.
// The last is where the board's directories are shown, with an empty file for each node: what a program
// sees that lists one.
inline constexpr char kRootVariable[] = "ROLU_SIM_ROOT";
inline constexpr char kSerialLinkName[] = "/proc/vpm_serial";
inline constexpr char kCommandDirectoryName[] = "/bin";
inline constexpr char kDeviceSocketName[] = "/devices";
inline constexpr char kControlSocketName[] = "/control";
inline constexpr char kWirelessStateName[] = "/wlan0-up";
inline constexpr char kShownDirectory[] = "/shown";

}  // namespace rolu_sim
