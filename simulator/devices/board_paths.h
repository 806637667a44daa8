#pragma once

#include <array>

namespace rolu_sim {

// The paths of the board's hardware, all that the preloaded object redirects. The serial port is a
// path inside the board root; the others are nodes that the board's device server answers for, and the
// directories that hold nothing but such nodes.
inline constexpr char kSerialPath[] = "/proc/vpm_serial";
inline constexpr char kI2cBusPath[] = "/dev/i2c-3";
inline constexpr char kGpioExportPath[] = "/sys/class/gpio/export";
inline constexpr char kBacklightPath[] = "/sys/devices/omapdss/display0/backlight/vorn512p/brightness";
inline constexpr char kLuxPath[] =
    "/sys/devices/platform/ehci-omap.0/usb1/1-2/1-2.4/1-2.4:1.3/ttyUSB3/tty/ttyUSB3/serio1/lux";

inline constexpr std::array<const char*, 14> kDevicePaths = {
    kI2cBusPath,
    kGpioExportPath,
    "/sys/class/gpio/gpio34/direction",
    "/sys/class/gpio/gpio34/value",
    "/sys/class/gpio/gpio35/direction",
    "/sys/class/gpio/gpio35/value",
    "/sys/class/gpio/gpio36/direction",
    "/sys/class/gpio/gpio36/value",
    "/sys/class/gpio/gpio37/direction",
    "/sys/class/gpio/gpio37/value",
    "/sys/class/gpio/gpio45/direction",
    "/sys/class/gpio/gpio45/value",
    kBacklightPath,
    kLuxPath,
};

// /dev, /proc and the upper directories of /sys are the system's, and do not list what is the board's.
inline constexpr std::array<const char*, 3> kBoardDirectories = {
    "/sys/class/gpio",
    "/sys/devices/omapdss",
    "/sys/devices/platform/ehci-omap.0",
};

// Names inside the board root. The last is where the board's directories are shown, with an empty file for
// each node: what a program sees that lists one.
inline constexpr char kSerialLinkName[] = "/proc/vpm_serial";
inline constexpr char kDeviceSocketName[] = "/devices";
inline constexpr char kShownDirectory[] = "/shown";

}  // namespace rolu_sim
