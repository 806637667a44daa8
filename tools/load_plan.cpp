#include "tools/load_plan.h"

#include <fmt/format.h>

#include <algorithm>

#include "tools/interrupt.h"
#include "tools/messages.h"
#include "tools/settings_table.h"
#include "tools/status_words.h"

namespace rolu {
namespace {

const SavedSetting* FindIn(const SettingsFile& file, const Setting& setting) {
  const auto found = std::find_if(file.settings.begin(), file.settings.end(),
                                  [&](const SavedSetting& saved) { return saved.setting == &setting; });
  return found == file.settings.end() ? nullptr : &*found;
}

bool HasChangeOf(const LoadPlan& plan, std::string_view name) {
  return std::any_of(plan.changes.begin(), plan.changes.end(),
                     [&](const Change& change) { return change.setting->name == name; });
}

void PlanSetting(Session& session, const Setting& setting, const SavedSetting* saved, LoadPlan& plan) {
  const bool is_switched_off = IsProtection(setting) && HasChangeOf(plan, kBatteryMode);
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

}  // namespace

LoadPlan PlanLoad(Session& session, const SettingsFile& file) {
  LoadPlan plan;
  for (const Setting& setting : Settings()) {
    if (!setting.IsSaved()) continue;
    interrupt::ThrowIfRequested();
    PlanSetting(session, setting, FindIn(file, setting), plan);
    if (!session.McuIsUnreachable()) continue;
    throw CommandError(kNoAnswer,
                       fmt::format("nothing was changed: {}", DescribeWithHint(session.McuProblem())));
  }
  return plan;
}

std::vector<Change> FindDeviations(Session& session, const SettingsFile& file, const LoadPlan& plan) {
  std::vector<Change> deviations;
  for (const SavedSetting& saved : file.settings) {
    if (interrupt::Signal() != 0) break;
    const auto failed = std::find_if(plan.changes.begin(), plan.changes.end(), [&](const Change& change) {
      return change.setting == saved.setting && !change.problem.empty();
    });
    if (failed != plan.changes.end()) continue;
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
            : "could not be read at the end: " + Describe(status);
    deviations.push_back(std::move(deviation));
  }
  return deviations;
}

}  // namespace rolu
