#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>

#include "tools/command.h"
#include "tools/confirm.h"
#include "tools/interrupt.h"
#include "tools/load_plan.h"
#include "tools/messages.h"
#include "tools/output.h"
#include "tools/settings_table.h"

namespace rolu {
namespace {

struct LoadOptions {
  std::string path;
  bool dry_run = false;
};

std::string ConsequenceOf(const Change& change) {
  return fmt::format("{} ({}={})", change.setting->consequence, change.setting->name,
                     ValueText(*change.setting, change.wanted));
}

std::vector<std::string> Consequences(const LoadPlan& plan) {
  std::vector<std::string> consequences;
  for (const Change& change : plan.changes) {
    if (MustAsk(*change.setting, change.wanted)) consequences.push_back(ConsequenceOf(change));
  }
  return consequences;
}

void ShowDifference(const LoadPlan& plan) {
  for (const Change& change : plan.changes) {
    const Setting& setting = *change.setting;
    const std::string before = change.before ? ValueText(setting, *change.before) : "unknown";
    const std::string wanted = ValueText(setting, change.wanted);
    const std::string note = before == wanted ? " (the change of battery.mode switches it off)" : "";
    Out(fmt::format("{}: {} -> {}{}\n", setting.name, before, wanted, note));
  }
  OutNow(fmt::format("{} to set, {} as they should be, {} not in the file\n", plan.changes.size(),
                     plan.unchanged.size(), plan.not_in_file.size()));
}

Document NamesOf(const std::vector<const Setting*>& settings) {
  Document names = Document::array();
  for (const Setting* const setting : settings) names.push_back(setting->name);
  return names;
}

void PrintPlan(const LoadPlan& plan, bool dry_run) {
  Document changes = Document::object();
  for (const Change& change : plan.changes) changes[std::string(change.setting->name)] = ChangeAsJson(change);
  PrintJson({{"dry_run", dry_run},
             {"changes", std::move(changes)},
             {"unchanged", NamesOf(plan.unchanged)},
             {"not_in_file", NamesOf(plan.not_in_file)}});
}

void Judge(std::vector<Change>& changes, Outcome& outcome) {
  for (const Change& change : changes) {
    if (change.problem.empty()) {
      outcome.Done();
      continue;
    }
    outcome.Failed(change.result);
    PrintChange(change);
  }
}

ExitStatus Apply(Session& session, const SettingsFile& file, LoadPlan& plan) {
  ApplyAll(session, plan.changes, [](const Change&) {});
  std::vector<Change> deviations = FindDeviations(session, file, plan);
  session.Close();
  Outcome outcome;
  Judge(plan.changes, outcome);
  Judge(deviations, outcome);
  // Whatever failed, the unit has become a part of what the file says.
  return outcome.Result() == kDone ? kDone : kPartlyDone;
}

ExitStatus RunLoad(const LoadOptions& options, const CommonOptions& common) {
  const SettingsFile file = ReadSettingsFile(options.path);
  Session session(common);
  LoadPlan plan = PlanLoad(session, file);
  if (!common.json) ShowDifference(plan);
  if (options.dry_run) {
    if (common.json) PrintPlan(plan, true);
    return kDone;
  }
  Confirm(common, Consequences(plan));
  const ExitStatus result = Apply(session, file, plan);
  if (common.json) PrintPlan(plan, false);
  interrupt::ThrowIfRequested();
  if (!common.json && result == kDone) Out("the unit is as the file says\n");
  return result;
}

}  // namespace

void AddLoadCommand(CLI::App& app, Invocation& invocation) {
  auto options = std::make_shared<LoadOptions>();
  CLI::App* const command =
      NewCommand(app, "load", "Make the unit's settings as a file says",
                 "  rolu load unit-17.json --dry-run\n"
                 "  rolu load -y unit-17.json\n"
                 "The file is checked whole before anything is sent, and the difference is shown. The\n"
                 "battery mode is set first and the protections after it, so that they end as the file\n"
                 "says. Everything is read back; what could not be set is named, with exit status 1.");
  command->add_option("FILE", options->path, "A file that 'rolu save' wrote; - is standard input")
      ->required();
  command->add_flag("--dry-run", options->dry_run, "Only show the difference");
  OnRun(command, invocation, [options](const CommonOptions& common) { return RunLoad(*options, common); });
}

}  // namespace rolu
