#include "tools/settings_table.h"

#include <fmt/format.h>

#include <algorithm>

#include "cli/nearest_name.h"
#include "tools/command_error.h"

namespace rolu {

const std::vector<SettingGroup>& SettingGroups() {
  static const std::vector<SettingGroup> groups = {
      {"board", "Board"},
      {"mcu", "Microcontroller (MCU)"},
      {"battery", "Car battery"},
      {"ignition", "Ignition"},
      {"poweroff", "Power-off warning"},
      {"shutdown", "Shutdown"},
      {"wakeup", "Wake-up"},
      {"clock", "Clock"},
      {"alarm", "Wake-up alarm"},
      {"backup", "Backup battery"},
      {"watchdog", "Watchdog"},
      {"gsensor", "G-sensor"},
      {"peripheral", "Peripherals"},
      {"display", "Display"},
      {"light", "Light sensor"},
      {"pins", "Digital pins"},
  };
  return groups;
}

std::string_view TitleOf(std::string_view group) {
  const auto& groups = SettingGroups();
  const auto known = std::find_if(groups.begin(), groups.end(),
                                  [&](const SettingGroup& each) { return each.name == group; });
  return known == groups.end() ? group : known->title;
}

const Setting* FindSetting(std::string_view name) {
  for (const Setting& setting : Settings()) {
    if (setting.name == name) return &setting;
  }
  return nullptr;
}

std::vector<std::string> SettingNames() {
  std::vector<std::string> names;
  for (const Setting& setting : Settings()) names.emplace_back(setting.name);
  return names;
}

const Setting& SettingNamed(std::string_view name) {
  if (const Setting* const setting = FindSetting(name)) return *setting;
  throw CommandError(kWrongUse,
                     fmt::format("there is no setting \"{}\"{}", name, Suggestion(name, SettingNames())));
}

std::vector<const Setting*> SettingsNamed(const std::vector<std::string>& names) {
  std::vector<const Setting*> found;
  if (names.empty()) {
    for (const Setting& setting : Settings()) found.push_back(&setting);
  }
  for (const std::string& name : names) {
    const std::size_t before = found.size();
    for (const Setting& setting : Settings()) {
      if (setting.name == name || GroupOf(setting) == name) found.push_back(&setting);
    }
    if (found.size() > before) continue;
    std::vector<std::string> known = SettingNames();
    for (const SettingGroup& group : SettingGroups()) known.emplace_back(group.name);
    throw CommandError(kWrongUse,
                       fmt::format("there is no setting or group \"{}\"{}", name, Suggestion(name, known)));
  }
  return found;
}

}  // namespace rolu
