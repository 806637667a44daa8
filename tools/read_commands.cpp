// status, get and list: what can be read without changing anything.

#include <fmt/format.h>

#include <algorithm>

#include "tools/command.h"
#include "tools/gpio_lines.h"
#include "tools/interrupt.h"
#include "tools/messages.h"
#include "tools/output.h"
#include "tools/report.h"
#include "tools/session.h"
#include "tools/settings_table.h"
#include "tools/status_words.h"

namespace rolu {
namespace {

// Why `status`, which must change nothing, does not ask for a setting now; null when it does.
const char* ReasonNotToAsk(const Setting& setting) {
  if (setting.family == Family::kPeripherals && GpsLineIsOn()) {
    return "not asked: the GPS receiver is on, and asking may interrupt its power; 'rolu get peripheral' "
           "asks";
  }
  if (setting.name == "pins.inputs" && !PinsArePrepared()) {
    return "the lines are not prepared; 'rolu pins prepare' does it";
  }
  return nullptr;
}

struct ReadOptions {
  std::vector<std::string> names;
  bool value_only = false;
};

ROLU_STATUS Read(Session& session, const Setting& setting, Report& report, Outcome& outcome) {
  interrupt::ThrowIfRequested();
  Value value;
  const ROLU_STATUS status = session.Read(setting, value);
  if (status == ROLU_STATUS_SUCCESS) {
    report.AddValue(setting, value);
    outcome.Done();
  } else {
    outcome.Failed(WordsOf(status).exit_status);
  }
  return status;
}

std::string_view TitleOf(std::string_view group) {
  for (const SettingGroup& known : SettingGroups()) {
    if (known.name == group) return known.title;
  }
  return group;
}

std::vector<const Setting*> AllSettings() {
  std::vector<const Setting*> all;
  for (const Setting& setting : Settings()) all.push_back(&setting);
  return all;
}

bool NeedsMcu(const Setting* setting) {
  return setting->family != Family::kCore;
}

// Who wants to know how things are learns soon that the MCU does not answer.
constexpr int kStatusPatience = 1;

ExitStatus RunStatus(const ReadOptions& options, const CommonOptions& common) {
  const std::vector<const Setting*> settings =
      options.names.empty() ? AllSettings() : SettingsNamed(options.names);
  Session session(common, kStatusPatience);
  // The quickest way to learn that the MCU is silent.
  if (std::any_of(settings.begin(), settings.end(), NeedsMcu)) session.Use(Family::kWatchdog);
  Report report;
  Outcome outcome;
  std::string_view group;
  for (const Setting* const setting : settings) {
    if (GroupOf(*setting) != group) {
      group = GroupOf(*setting);
      report.AddTitle(std::string(TitleOf(group)));
    }
    if (const char* const reason = ReasonNotToAsk(*setting)) {
      report.AddSkipped(std::string(setting->name), reason);
      continue;
    }
    const ROLU_STATUS status = Read(session, *setting, report, outcome);
    if (status != ROLU_STATUS_SUCCESS) report.AddProblem(std::string(setting->name), status);
  }
  report.Print(common.json);
  // What the board tells without the MCU does not make a silent MCU a part of a success.
  if (!session.McuIsUnreachable()) return outcome.Result();
  SayProblem(DescribeWithHint(session.McuProblem()));
  return kNoAnswer;
}

ExitStatus RunGet(const ReadOptions& options, const CommonOptions& common) {
  const std::vector<const Setting*> settings = SettingsNamed(options.names);
  Session session(common);
  Report report;
  Outcome outcome;
  for (const Setting* const setting : settings) {
    const ROLU_STATUS status = Read(session, *setting, report, outcome);
    if (status == ROLU_STATUS_SUCCESS) continue;
    if (common.json) report.AddProblem(std::string(setting->name), status);
    SayProblem(fmt::format("could not read {}: {}", setting->name, DescribeWithHint(status)));
  }
  if (options.value_only && !common.json) {
    report.PrintValues();
  } else {
    report.Print(common.json);
  }
  return outcome.Result();
}

Document DescribeSetting(const Setting& setting) {
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

ExitStatus RunList(const ReadOptions& options, const CommonOptions& common) {
  const std::vector<const Setting*> settings =
      options.names.empty() ? AllSettings() : SettingsNamed(options.names);
  if (common.json) {
    Document rows = Document::array();
    for (const Setting* const setting : settings) rows.push_back(DescribeSetting(*setting));
    PrintJson(rows);
    return kDone;
  }
  std::size_t width = 0;
  for (const Setting* const setting : settings) width = std::max(width, setting->name.size());
  for (const Setting* const setting : settings) {
    const std::string unit = setting->unit.empty() ? "" : fmt::format(" ({})", setting->unit);
    Out(fmt::format("{:<{}}  {}\n{:{}}  {}{}\n", setting->name, width, setting->help, "", width,
                    setting->IsWritable() ? RangeText(*setting) : "read only: " + RangeText(*setting), unit));
  }
  return kDone;
}

}  // namespace

void AddStatusCommand(CLI::App& app, Invocation& invocation) {
  auto options = std::make_shared<ReadOptions>();
  CLI::App* const command =
      NewCommand(app, "status", "Show everything that can be read from the board",
                 "  rolu status\n  rolu status battery ignition\n  rolu status --json "
                 "| jq '.\"battery.voltage\".value'\n"
                 "The G-sensor is switched on for its readings, and off again with its alarm.");
  command->add_option("NAME", options->names, "Only these settings or groups");
  OnRun(command, invocation, [options](const CommonOptions& common) { return RunStatus(*options, common); });
}

void AddGetCommand(CLI::App& app, Invocation& invocation) {
  auto options = std::make_shared<ReadOptions>();
  CLI::App* const command =
      NewCommand(app, "get", "Read settings by name",
                 "  rolu get battery.voltage\n  rolu get ignition alarm.time\n  rolu get -n battery.voltage");
  command->add_option("NAME", options->names, "Names of settings or groups; 'rolu list' lists them")
      ->required();
  command->add_flag("-n,--value-only", options->value_only, "Print the values only, without names and units");
  OnRun(command, invocation, [options](const CommonOptions& common) { return RunGet(*options, common); });
}

void AddListCommand(CLI::App& app, Invocation& invocation) {
  auto options = std::make_shared<ReadOptions>();
  CLI::App* const command =
      NewCommand(app, "list", "List the settings and what they take; asks the board nothing",
                 "  rolu list\n  rolu list battery");
  command->add_option("NAME", options->names, "Only these settings or groups");
  OnRun(command, invocation, [options](const CommonOptions& common) { return RunList(*options, common); });
}

}  // namespace rolu
