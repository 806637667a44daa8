// Verbs that set what the board's devices show to programs.

#include <fmt/format.h>

#include "protocol/values.h"
#include "simulator/desk/desk.h"

namespace rolu_sim {
namespace {

Choices GpioLines() {
  Choices lines;
  for (const int line : rolu_protocol::kGpioLines) lines.emplace_back(std::to_string(line), line);
  return lines;
}

std::string DriveLine(Desk& desk, const Arguments& given) {
  const int line = given.Get<int>("line");
  Gpio& gpio = desk.board().gpio();
  gpio.SetInput(line, given.Get<bool>("level"));
  return gpio.IsOutput(line) ? "a program drives this line, so the level outside does not show" : "";
}

void DetachDevice(Desk& desk, const Arguments& given) {
  const auto address = given.Integer<std::uint8_t>("address");
  if (!desk.register_devices().contains(address)) {
    throw UsageError(fmt::format("no register device sits at 0x{:02X}", address));
  }
  desk.DetachRegisterDevice(address);
}

void SetRegisters(Desk& desk, const Arguments& given) {
  const auto address = given.Integer<std::uint8_t>("address");
  const auto found = desk.register_devices().find(address);
  if (found == desk.register_devices().end()) {
    throw UsageError(
        fmt::format("no register device sits at 0x{0:02X}; i2c-attach 0x{0:02X} puts one there", address));
  }
  auto index = given.Integer<std::uint8_t>("register");
  for (const char byte : given.Get<std::string>("bytes")) {
    found->second->SetRegister(index++, static_cast<std::uint8_t>(byte));
  }
}

}  // namespace

std::vector<Verb> DeviceVerbs() {
  const Parameter address = Integer("address", 0x03, 0x77, "the 7-bit address");
  return {
      {"pin",
       "Drives a GPIO line from outside",
       {Choice("line", GpioLines(), "the line; 37 and 36 are the digital inputs"),
        Choice("level", {{"0", false}, {"1", true}}, "the level")},
       Doing(DriveLine)},
      {"lux",
       "Sets the ambient light",
       {Integer("lux", 0, 99999, "the light sensor's reading")},
       Doing([](Desk& desk, const Arguments& given) {
         desk.board().light_sensor().SetNumber(given.Integer<long>("lux"));
       })},
      {"backlight",
       "Sets the brightness of the backlight, as another program would",
       {Integer("level", 0, Backlight::kHighestLevel, "the level")},
       Doing([](Desk& desk, const Arguments& given) {
         desk.board().backlight().SetLevel(given.Integer<int>("level"));
       })},
      {"wlan",
       "Brings the wireless interface up or down",
       {Switch("state", "up is on")},
       Doing([](Desk& desk, const Arguments& given) {
         desk.board().wireless().Set(given.Get<bool>("state"));
       })},
      {"i2c-attach",
       "Puts a device with 256 registers on the I2C bus",
       {address},
       Doing([](Desk& desk, const Arguments& given) {
         desk.AttachRegisterDevice(given.Integer<std::uint8_t>("address"));
       })},
      {"i2c-detach", "Takes a register device from the I2C bus", {address}, Doing(DetachDevice)},
      {"i2c-write",
       "Sets registers of a device on the I2C bus",
       {address, Integer("register", 0, 255, "the first register"), HexBytes("bytes", "their values")},
       Doing(SetRegisters)},
  };
}

}  // namespace rolu_sim
