#include "simulator/control/board_files.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "protocol/values.h"
#include "simulator/devices/board_paths.h"
#include "simulator/devices/gpio.h"

namespace rolu_sim {
namespace {

const std::vector<std::pair<std::string, std::string>>& Files() {
  static const std::vector<std::pair<std::string, std::string>> files = [] {
    std::vector<std::pair<std::string, std::string>> all = {
        {"serial", kSerialPath}, {"i2c", kI2cBusPath}, {"gpio-export", kGpioExportPath}};
    for (const int line : rolu_protocol::kGpioLines) {
      for (const char* const attribute : kGpioAttributes)
        all.emplace_back(fmt::format("gpio{}-{}", line, attribute), GpioPath(line, attribute));
    }
    all.insert(all.end(), {{"backlight", kBacklightPath}, {"lux", kLuxPath}});
    return all;
  }();
  return files;
}

}  // namespace

std::vector<std::string> BoardFileNames() {
  std::vector<std::string> names;
  for (const auto& [name, path] : Files()) names.push_back(name);
  return names;
}

std::string BoardFilePath(const std::string& name) {
  const auto found =
      std::find_if(Files().begin(), Files().end(), [&](const auto& file) { return file.first == name; });
  return found == Files().end() ? std::string() : found->second;
}

}  // namespace rolu_sim
