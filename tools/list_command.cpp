#include <fmt/format.h>

#include <algorithm>

#include "cli/help_text.h"
#include "tools/command.h"
#include "tools/report.h"

namespace rolu {
namespace {

Document AsJson(const Setting& setting) {
  Document row = {{"name", setting.name}, {"help", setting.help}, {"writable", setting.IsWritable()}};
  if (setting.IsWritable()) {
    row["values"] = RangeText(setting);
    row["saved"] = setting.IsSaved();
  }
  if (setting.IsWritable() && setting.kind == Kind::kNumber) {
    row["minimum"] = static_cast<std::int64_t>(setting.minimum);
    row["maximum"] = static_cast<std::int64_t>(setting.maximum);
  }
  if (!setting.choices.empty()) row["choices"] = setting.choices;
  if (!setting.unit.empty()) row["unit"] = setting.unit;
  return row;
}

void PrintList(const std::vector<const Setting*>& settings) {
  std::string text;
  std::size_t width = 0;
  for (const Setting* const setting : settings) width = std::max(width, setting->name.size());
  for (const Setting* const setting : settings) {
    const std::string unit = setting->unit.empty() ? "" : fmt::format(" ({})", setting->unit);
    text +=
        fmt::format("{:<{}}  {}\n{:{}}  {}{}\n", setting->name, width, setting->help, "", width,
                    setting->IsWritable() ? RangeText(*setting) : "read only: " + RangeText(*setting), unit);
  }
  if (std::ranges::count(settings, kMcuUnits, &Setting::unit) > 0)
    text += fmt::format("\n{}\n", kMcuUnitsHelp);
  Out(FitToOutput(text, "rolu"));
}

ExitStatus RunList(const std::vector<std::string>& names, const CommonOptions& common) {
  const std::vector<const Setting*> settings = SettingsNamed(names);
  if (!common.json) {
    PrintList(settings);
    return kDone;
  }
  Document rows = Document::array();
  for (const Setting* const setting : settings) rows.push_back(AsJson(*setting));
  PrintJson(rows);
  return kDone;
}

}  // namespace

void AddListCommand(CLI::App& app, Invocation& invocation) {
  auto names = std::make_shared<std::vector<std::string>>();
  CLI::App* const command =
      NewCommand(app, "list", "List the settings and what they take; asks the board nothing",
                 "  rolu list\n  rolu list battery");
  command->add_option("NAME", *names, "Only these settings or groups");
  OnRun(command, invocation, RunList, names);
}

}  // namespace rolu
