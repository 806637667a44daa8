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

// A unit's settings, in the order of the table.
struct SettingsFile {
  std::vector<SavedSetting> settings;
  std::vector<std::string> left_out;  // readings in the file, which cannot be set
};

// Reads and checks the whole file; "-" means standard input. A file has one of these forms:
//   - the JSON of 'rolu save': {"format": "rolu-settings", "version": 1, "saved_at": ..., "firmware": ...,
//     "settings": {NAME: {"value": ..., "unit": ...}, ...}};
//   - the JSON of 'rolu get' and 'rolu status': {NAME: {"value": ..., "unit": ...}, ...};
//   - lines as people write them: "ignition.on-delay = 5  # a comment". A unit may stand behind the value.
// Throws CommandError(kWrongUse) that names everything that is wrong with the file.
SettingsFile ReadSettingsFile(const std::string& path);

inline constexpr char kSettingsFileHelp[] =
    "A file of 'rolu save', of 'rolu get --json' or 'rolu status --json', or of lines NAME = VALUE; - is "
    "standard input";

// Says on standard error how many values of the file are left out.
void SayWhatIsLeftOut(const SettingsFile& file);

// Writes the JSON of 'rolu save', the file completely or not at all; "-" means standard output. Throws
// CommandError.
void WriteSettingsFile(const std::string& path, const std::string& firmware,
                       const std::vector<SavedSetting>& settings);

}  // namespace rolu
