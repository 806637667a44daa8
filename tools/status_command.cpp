#include <algorithm>

#include "cli/messages.h"
#include "tools/command.h"
#include "tools/digital_lines.h"
#include "tools/report.h"

namespace rolu {
namespace {

// One unanswered question is enough: the user should learn soon that the MCU does not answer.
constexpr int kPatience = 1;

// Why `status` does not ask for a setting now: `status` must change nothing. Null when it asks.
const char* ReasonNotToAsk(const Setting& setting) {
  if (setting.family == Family::kPeripherals && kGpsPowerLine.Level() == true) {
    return "not asked: the GPS receiver is on, and asking may interrupt its power; 'rolu get peripheral' "
           "asks";
  }
  if (setting.name == kInputPins && LinesAreUnprepared()) return kLinesAreUnprepared;
  return nullptr;
}

Report ReadAll(Session& session, const std::vector<const Setting*>& settings, Outcome& outcome) {
  Report report;
  std::string_view group;
  for (const Setting* const setting : settings) {
    if (GroupOf(*setting) != group) {
      group = GroupOf(*setting);
      report.AddTitle(std::ranges::find(SettingGroups(), group, &SettingGroup::name)->title);
    }
    if (const char* const reason = ReasonNotToAsk(*setting)) {
      report.AddSkipped(setting->name, reason);
      continue;
    }
    const ROLU_STATUS status = ReadInto(session, *setting, report, outcome);
    if (status != ROLU_STATUS_SUCCESS) report.AddProblem(setting->name, status);
  }
  return report;
}

ExitStatus RunStatus(const std::vector<std::string>& names, const CommonOptions& common) {
  const std::vector<const Setting*> settings = SettingsNamed(names);
  Session session(common, kPatience);
  // This is the quickest way to find out that the MCU is silent.
  const bool needs_mcu =
      std::ranges::any_of(settings, [](const Setting* setting) { return setting->family != Family::kCore; });
  if (needs_mcu) session.Use(Family::kWatchdog);
  Outcome outcome;
  ReadAll(session, settings, outcome).Print(common.json);
  // Some values come without the MCU. With a silent MCU they do not count as a partial success.
  if (!session.McuIsUnreachable()) return outcome.Result();
  SayProblem(DescribeWithHint(session.McuProblem()));
  return kNoAnswer;
}

}  // namespace

void AddStatusCommand(CLI::App& app, Invocation& invocation) {
  auto names = std::make_shared<std::vector<std::string>>();
  CLI::App* const command =
      NewCommand(app, "status", "Show everything that can be read from the board",
                 "  rolu status\n  rolu status battery ignition\n  rolu status --json "
                 "| jq '.\"battery.voltage\".value'\n"
                 "The G-sensor is switched on for its readings, and off again with its alarm.");
  command->add_option("NAME", *names, "Only these settings or groups");
  OnRun(command, invocation, RunStatus, names);
}

}  // namespace rolu
