#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tools/setting.h"

namespace rolu {

// All settings, group by group. `load` and `set` apply changes in this order: the battery mode
// before what it switches off, a delay before the switch that starts it.
const std::vector<Setting>& Settings();

struct SettingGroup {
  std::string_view name;   // the part before the dot
  std::string_view title;  // "Car battery"
};
const std::vector<SettingGroup>& SettingGroups();

// "Car battery" for "battery".
std::string_view TitleOf(std::string_view group);

// Null when there is none.
const Setting* FindSetting(std::string_view name);

// The setting of that name. Throws CommandError(kWrongUse) that suggests the nearest.
const Setting& SettingNamed(std::string_view name);

// The settings that names mean, each name a setting or a group ("battery"), in the order given; all settings
// where no name is given. The same throw.
std::vector<const Setting*> SettingsNamed(const std::vector<std::string>& names);

std::vector<std::string> SettingNames();

}  // namespace rolu
