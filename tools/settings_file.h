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
struct SettingsFile {
  std::string saved_at;
  std::string firmware;
  std::vector<SavedSetting> settings;  // in the order of the table
};

// Reads and checks the whole file, "-" for standard input. Throws CommandError(kWrongUse) that names
// everything that is wrong with it.
SettingsFile ReadSettingsFile(const std::string& path);

// Writes the file whole or not at all, "-" for standard output. Throws CommandError.
void WriteSettingsFile(const std::string& path, const SettingsFile& file);

}  // namespace rolu
