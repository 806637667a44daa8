#include "simulator/control/board_files.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "simulator/devices/board_paths.h"

namespace rolu_sim {
namespace {

// "/sys/class/gpio/gpio37/value" is gpio37-value, the export attribute gpio-export.
std::string NameOf(const std::string& path) {
  if (path == kI2cBusPath) return "i2c";
  if (path == kBacklightPath) return "backlight";
  if (path == kLuxPath) return "lux";
  constexpr std::string_view kClass = "/sys/class/gpio/";
  std::string name = path.substr(kClass.size());
  if (name == "export") return "gpio-export";
  std::replace(name.begin(), name.end(), '/', '-');
  return name;
}

const std::vector<std::pair<std::string, std::string>>& Files() {
  static const std::vector<std::pair<std::string, std::string>> files = [] {
    std::vector<std::pair<std::string, std::string>> all = {{"serial", kSerialPath}};
    for (const char* const path : kDevicePaths) all.emplace_back(NameOf(path), path);
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
