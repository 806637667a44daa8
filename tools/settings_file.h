#pragma once

#include <string>
#include <vector>

#include "tools/report.h"
#include "tools/setting.h"

namespace rolu {

struct SavedSetting {
  const Setting* setting = nullptr;
  Value value;
};

// A unit's settings as a file: JSON, {"format": "rolu-settings", "version": 1, "saved_at": ...,
// "firmware": ..., "settings": {NAME: {"value": ..., "unit": ...}, ...}}.
//
// Reads and checks the whole file; "-" means standard input. Returns the settings in the order of the table.
// Throws CommandError(kWrongUse) that names everything that is wrong with the file.
std::vector<SavedSetting> ReadSettingsFile(const std::string& path);

// Writes the file completely or not at all; "-" means standard output. Throws CommandError.
void WriteSettingsFile(const std::string& path, const std::string& firmware,
                       const std::vector<SavedSetting>& settings);

}  // namespace rolu
