// What the board's devices show to programs.

#include <fmt/format.h>

#include "protocol/values.h"
#include "simulator/control/desk.h"
#include "simulator/control/verb.h"

namespace rolu_sim {
namespace {

constexpr char kDevices[] = "Devices";

std::vector<std::string> GpioLines() {
  std::vector<std::string> lines;
  lines.reserve(rolu_protocol::kGpioLines.size());
  for (const int line : rolu_protocol::kGpioLines) lines.push_back(std::to_string(line));
  return lines;
}

std::uint8_t AddressOf(const Arguments& arguments) {
  return static_cast<std::uint8_t>(arguments.Integer("address"));
}

std::string DriveLine(Desk& desk, const Arguments& arguments) {
  const int line = std::stoi(arguments.Text("line"));
  Gpio& gpio = desk.board().gpio();
  gpio.SetInput(line, arguments.Text("level") == "1");
  return gpio.IsOutput(line) ? "a program drives this line, it does not see what is outside" : "";
}

std::string SetLux(Desk& desk, const Arguments& arguments) {
  desk.board().light_sensor().SetNumber(arguments.Integer("lux"));
  return {};
}

std::string SetBacklight(Desk& desk, const Arguments& arguments) {
  desk.board().backlight().SetLevel(static_cast<int>(arguments.Integer("level")));
  return {};
}

std::string SetWireless(Desk& desk, const Arguments& arguments) {
  desk.board().wireless().Set(arguments.IsOn("state"));
  return {};
}

std::string AttachDevice(Desk& desk, const Arguments& arguments) {
  const std::uint8_t address = AddressOf(arguments);
  if (address == ResetController::kAddress) throw UsageError("the reset controller sits at 0x78");
  desk.AttachRegisterDevice(address);
  return {};
}

std::string DetachDevice(Desk& desk, const Arguments& arguments) {
  if (desk.register_devices().count(AddressOf(arguments)) == 0) {
    throw UsageError(fmt::format("no register device sits at 0x{:02X}", AddressOf(arguments)));
  }
  desk.DetachRegisterDevice(AddressOf(arguments));
  return {};
}

std::string SetRegisters(Desk& desk, const Arguments& arguments) {
  const std::uint8_t address = AddressOf(arguments);
  const auto found = desk.register_devices().find(address);
  if (found == desk.register_devices().end()) {
    throw UsageError(
        fmt::format("no register device sits at 0x{0:02X}; i2c-attach 0x{0:02X} puts one there", address));
  }
  auto index = static_cast<std::uint8_t>(arguments.Integer("register"));
  for (const char byte : arguments.Bytes("bytes")) {
    found->second->SetRegister(index++, static_cast<std::uint8_t>(byte));
  }
  return {};
}

}  // namespace

std::vector<Verb> DeviceVerbs() {
  const Parameter address = Integer("address", 0x03, 0x77, "the 7-bit address");
  return {
      {"pin",
       kDevices,
       "Drives a GPIO line from outside",
       {Choice("line", GpioLines(), "the line; 37 and 36 are the digital inputs"),
        Choice("level", {"0", "1"}, "the level")},
       DriveLine},
      {"lux",
       kDevices,
       "Sets the ambient light",
       {Integer("lux", 0, 99999, "the light sensor's reading")},
       SetLux},
      {"backlight",
       kDevices,
       "Sets the brightness of the backlight, as another program would",
       {Integer("level", 0, Backlight::kHighestLevel, "the level")},
       SetBacklight},
      {"wlan",
       kDevices,
       "Brings the wireless interface up or down",
       {Choice("state", {"on", "off"}, "up is on")},
       SetWireless},
      {"i2c-attach", kDevices, "Puts a device with 256 registers on the I2C bus", {address}, AttachDevice},
      {"i2c-detach", kDevices, "Takes a register device from the I2C bus", {address}, DetachDevice},
      {"i2c-write",
       kDevices,
       "Sets registers of a device on the I2C bus",
       {address, Integer("register", 0, 255, "the first register"), HexBytes("bytes", "their values")},
       SetRegisters},
  };
}

}  // namespace rolu_sim
