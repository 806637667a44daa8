#include <fmt/format.h>

#include <algorithm>

#include "cli/messages.h"
#include "tools/change.h"
#include "tools/command.h"
#include "tools/guard.h"
#include "tools/interrupt.h"
#include "tools/session.h"
#include "tools/settings_file.h"
#include "tools/status_words.h"

namespace rolu {
namespace {

struct LoadOptions {
  std::string path;
  bool dry_run = false;
};

// What to do so that the unit matches a file, in this order.
struct LoadPlan {
  std::vector<Change> changes;
  std::vector<const Setting*> unchanged;
  std::vector<const Setting*> not_in_file;
};

void PlanSetting(Session& session, const Setting& setting, const SavedSetting* saved, LoadPlan& plan) {
  const bool is_switched_off = IsProtection(setting) && HasChangeOf(plan.changes, kBatteryMode);
  if (saved == nullptr) plan.not_in_file.push_back(&setting);
  if (saved == nullptr && !is_switched_off) return;
  Change change;
  change.setting = &setting;
  Value now;
  if (session.Read(setting, now) == ROLU_STATUS_SUCCESS) change.before = now;
  if (saved == nullptr && !change.before) return;
  change.wanted = saved == nullptr ? *change.before : saved->value;
  const bool is_same = change.before && IsSame(*change.before, change.wanted);
  const bool needs_switching_on = is_switched_off && change.wanted == true;
  if (is_same && !needs_switching_on) {
    plan.unchanged.push_back(&setting);
  } else {
    plan.changes.push_back(std::move(change));
  }
}

// Reads the unit and compares it with the file. A change of the battery mode switches both protections off.
// The plan then sets them afterwards: to the values in the file, else to their former values.
LoadPlan PlanLoad(Session& session, const std::vector<SavedSetting>& file) {
  LoadPlan plan;
  for (const Setting& setting : Settings()) {
    if (!setting.IsSaved()) continue;
    interrupt::ThrowIfRequested();
    const auto saved = std::ranges::find(file, &setting, &SavedSetting::setting);
    PlanSetting(session, setting, saved == file.end() ? nullptr : &*saved, plan);
    if (!session.McuIsUnreachable()) continue;
    throw CommandError(kNoAnswer,
                       fmt::format("nothing was changed: {}", DescribeWithHint(session.McuProblem())));
  }
  return plan;
}

// Reads the settings of the file once more, except those that failed in `plan`. Returns those that differ
// from the file: setting one may have changed another.
std::vector<Change> FindDeviations(Session& session, const std::vector<SavedSetting>& file,
                                   const LoadPlan& plan) {
  std::vector<Change> deviations;
  for (const SavedSetting& saved : file) {
    if (interrupt::Signal() != 0) break;
    const auto planned = std::ranges::find(plan.changes, saved.setting, &Change::setting);
    if (planned != plan.changes.end() && !planned->problem.empty()) continue;
    Value now;
    const ROLU_STATUS status = session.Read(*saved.setting, now);
    if (status == ROLU_STATUS_SUCCESS && IsSame(saved.value, now, saved.setting->rounding)) continue;
    Change deviation;
    deviation.setting = saved.setting;
    deviation.wanted = saved.value;
    deviation.result = status == ROLU_STATUS_SUCCESS ? kRefused : WordsOf(status).exit_status;
    deviation.problem =
        status == ROLU_STATUS_SUCCESS
            ? fmt::format("is in the file, but the unit ends with {}", ValueText(*saved.setting, now))
            : "could not be read at the end: " + Describe(status, Act::kRead);
    deviations.push_back(std::move(deviation));
  }
  return deviations;
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

void Judge(const std::vector<Change>& changes, Outcome& outcome) {
  for (const Change& change : changes) {
    outcome.Add(change.result);
    if (!change.problem.empty()) PrintChange(change);
  }
}

ExitStatus Apply(Session& session, const std::vector<SavedSetting>& file, LoadPlan& plan) {
  ApplyAll(session, plan.changes, [](const Change&) {});
  guard::SetLastWords("the changes were made, but not all was read back");
  const std::vector<Change> deviations = FindDeviations(session, file, plan);
  session.Close();
  Outcome outcome;
  Judge(plan.changes, outcome);
  Judge(deviations, outcome);
  // Something failed, so the unit matches the file only in part.
  return outcome.Result() == kDone ? kDone : kPartlyDone;
}

ExitStatus RunLoad(const LoadOptions& options, const CommonOptions& common) {
  guard::SetLastWords("nothing was changed");
  const SettingsFile contents = ReadSettingsFile(options.path);
  SayWhatIsLeftOut(contents);
  const std::vector<SavedSetting>& file = contents.settings;
  Session session(common);
  LoadPlan plan = PlanLoad(session, file);
  if (!common.json) ShowDifference(plan);
  if (options.dry_run) {
    if (common.json) PrintPlan(plan, true);
    return kDone;
  }
  Confirm(common, ConsequencesOf(plan.changes));
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
                 "says. Everything is read back; what could not be set is named, with exit status 1.\n"
                 "The lines of a file look like this: ignition.on-delay = 5  # a comment");
  command->add_option("FILE", options->path, kSettingsFileHelp)->required();
  command->add_flag("--dry-run", options->dry_run, "Only show the difference");
  OnRun(command, invocation, RunLoad, options);
}

}  // namespace rolu
