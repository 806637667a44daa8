#include "tools/change.h"

#include <fmt/format.h>

#include <algorithm>

#include "cli/messages.h"
#include "tools/guard.h"
#include "tools/interrupt.h"
#include "tools/status_words.h"

namespace rolu {
namespace {

std::string WithUnit(const Setting& setting, const Value& value) {
  const std::string text = ValueText(setting, value);
  return setting.unit.empty() ? text : fmt::format("{} {}", text, setting.unit);
}

// "; the MCU's range is 10.492 to 12.000 V" for a threshold: only the MCU can check it.
std::string McuRange(const Setting& setting) {
  const std::string_view system = setting.name.substr(0, setting.name.rfind('.'));
  const Setting* const range = FindSetting(fmt::format("{}.range", system));
  Value limits;
  if (range == nullptr || range->read(limits) != ROLU_STATUS_SUCCESS) return "";
  return fmt::format("; the MCU's range is {} to {} V", VoltsText(limits.front().get<double>()),
                     VoltsText(limits.back().get<double>()));
}

void Fail(Change& change, ROLU_STATUS status, const std::string& doing, Act act) {
  change.result = WordsOf(status).exit_status;
  change.problem = doing + ": " + DescribeWithHint(status, act);
  const bool refused = status == ROLU_STATUS_INVALID_PARAMETER && act == Act::kChange;
  if (refused && change.setting->kind == Kind::kVolts) change.problem += McuRange(*change.setting);
}

// Where the changes stand while the one at `now` is made.
std::string Standing(const std::vector<Change>& changes, std::size_t now) {
  const auto text = [](const Change& change) {
    return fmt::format("{} = {}", change.setting->name, ValueText(*change.setting, change.wanted));
  };
  std::string standing = text(changes[now]) + " may or may not be set";
  for (std::size_t i = now + 1; i < changes.size(); ++i) {
    standing += (i == now + 1 ? "; not set: " : ", ") + text(changes[i]);
  }
  return standing;
}

void GiveUp(Change& change) {
  change.result = kPartlyDone;
  change.problem = "was not set, because a signal asked for an end";
}

bool IsChangeOfProtection(const Change& change) {
  return IsProtection(*change.setting);
}

}  // namespace

bool IsProtection(const Setting& setting) {
  return setting.name == "battery.preboot" || setting.name == "battery.lbp";
}

bool HasChangeOf(const std::vector<Change>& changes, std::string_view name) {
  return std::ranges::any_of(changes, [&](const Change& change) { return change.setting->name == name; });
}

Change ParseChange(const std::string& name, std::string_view text) {
  Change change;
  change.setting = &SettingNamed(name);
  if (!change.setting->IsWritable()) throw CommandError(kWrongUse, fmt::format("{} can only be read", name));
  change.wanted = ParseValue(*change.setting, text);
  return change;
}

std::vector<std::string> ConsequencesOf(const std::vector<Change>& changes) {
  std::vector<std::string> consequences;
  for (const Change& change : changes) {
    const Setting& setting = *change.setting;
    if (!MustAsk(setting, change.wanted)) continue;
    consequences.push_back(
        fmt::format("{} ({}={})", setting.consequence, setting.name, ValueText(setting, change.wanted)));
  }
  return consequences;
}

void Apply(Session& session, Change& change) {
  const Setting& setting = *change.setting;
  Value value;
  if (!change.before && session.Read(setting, value) == ROLU_STATUS_SUCCESS) change.before = value;
  ROLU_STATUS status = session.Write(setting, change.wanted);
  if (status != ROLU_STATUS_SUCCESS) return Fail(change, status, "could not be set", Act::kChange);
  status = session.Read(setting, value);
  if (status != ROLU_STATUS_SUCCESS)
    return Fail(change, status, "was set, but could not be read back", Act::kRead);
  change.read_back = value;
  if (IsSame(change.wanted, value, setting.rounding)) return;
  change.result = kRefused;
  change.problem = fmt::format("was set, but reads back as {}", WithUnit(setting, value));
}

void ApplyAll(Session& session, std::vector<Change>& changes,
              const std::function<void(const Change&)>& tell) {
  bool protections_are_off = false;
  std::optional<guard::MustFinish> must_finish;
  for (std::size_t i = 0; i < changes.size(); ++i) {
    Change& change = changes[i];
    const bool must_be_done = protections_are_off && IsProtection(*change.setting);
    if (interrupt::Signal() != 0 && !must_be_done) {
      GiveUp(change);
    } else {
      if (must_be_done) session.AskAgain();
      guard::SetLastWords(Standing(changes, i));
      const bool is_mode = change.setting->name == kBatteryMode;
      // The change of the mode switches the protections off, and later changes may switch them on again.
      if (is_mode && std::ranges::any_of(changes, IsChangeOfProtection)) must_finish.emplace();
      Apply(session, change);
      protections_are_off = protections_are_off || is_mode;
    }
    tell(change);
  }
}

void PrintChange(const Change& change) {
  const Setting& setting = *change.setting;
  if (!change.problem.empty()) {
    SayProblem(fmt::format("{} = {} {}", setting.name, ValueText(setting, change.wanted), change.problem));
    return;
  }
  const std::string before =
      change.before ? fmt::format(" (was {})", ValueText(setting, *change.before)) : "";
  const bool rounded = !IsSame(*change.read_back, change.wanted);
  const std::string asked =
      rounded ? fmt::format(", the nearest to {} that the MCU holds", ValueText(setting, change.wanted)) : "";
  Out(fmt::format("{} = {}{}{}\n", setting.name, WithUnit(setting, *change.read_back), asked, before));
}

ExitStatus ApplyAndPrint(Session& session, std::vector<Change>& changes, bool json) {
  Outcome outcome;
  Document document = Document::object();
  ApplyAll(session, changes, [&](const Change& change) {
    outcome.Add(change.result);
    document[std::string(change.setting->name)] = ChangeAsJson(change);
    if (!json || !change.problem.empty()) PrintChange(change);
  });
  if (json) PrintJson(document);
  return outcome.Result();
}

Document ChangeAsJson(const Change& change) {
  Document document = {{"wanted", change.wanted}};
  if (change.before) document["before"] = *change.before;
  if (change.read_back) document["value"] = *change.read_back;
  if (!change.setting->unit.empty()) document["unit"] = change.setting->unit;
  if (!change.problem.empty()) document["error"] = change.problem;
  return document;
}

}  // namespace rolu
