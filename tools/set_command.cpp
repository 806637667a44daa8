#include <fmt/format.h>

#include <algorithm>

#include "cli/messages.h"
#include "tools/change.h"
#include "tools/command.h"
#include "tools/interrupt.h"

namespace rolu {
namespace {

Change ParseAssignment(const std::string& text) {
  const std::size_t equals = text.find('=');
  if (equals == std::string::npos)
    throw CommandError(kWrongUse, fmt::format("\"{}\" is not NAME=VALUE", text));
  return ParseChange(text.substr(0, equals), text.substr(equals + 1));
}

// Sorts the changes in the order of the table, because a row depends only on earlier rows.
std::vector<Change> ParseAssignments(const std::vector<std::string>& texts) {
  std::vector<Change> changes;
  changes.reserve(texts.size());
  for (const std::string& text : texts) changes.push_back(ParseAssignment(text));
  // All settings are rows of one vector, so the addresses give the order.
  std::ranges::sort(changes, {}, &Change::setting);
  const auto twice = std::ranges::adjacent_find(changes, {}, &Change::setting);
  if (twice != changes.end()) {
    throw CommandError(kWrongUse, fmt::format("{} is given twice", twice->setting->name));
  }
  return changes;
}

// A change of the battery mode switches protections off. This message says how to switch them on again.
void RemindOfProtections(const std::vector<Change>& changes) {
  if (!HasChangeOf(changes, kBatteryMode)) return;
  std::string left_off;
  for (const std::string_view name : {"battery.preboot", "battery.lbp"}) {
    if (!HasChangeOf(changes, name)) left_off += fmt::format(" {}=on", name);
  }
  if (left_off.empty()) return;
  Say(fmt::format("the change of battery.mode switches protections off; 'rolu set{}' switches on again",
                  left_off));
}

ExitStatus RunSet(const std::vector<std::string>& assignments, const CommonOptions& common) {
  std::vector<Change> changes = ParseAssignments(assignments);
  Confirm(common, ConsequencesOf(changes));
  Session session(common);
  const ExitStatus result = ApplyAndPrint(session, changes, common.json);
  RemindOfProtections(changes);
  interrupt::ThrowIfRequested();
  return result;
}

}  // namespace

void AddSetCommand(CLI::App& app, Invocation& invocation) {
  auto assignments = std::make_shared<std::vector<std::string>>();
  CLI::App* const command =
      NewCommand(app, "set", "Set settings, read them back and compare",
                 "  rolu set ignition.off-event-delay=20\n"
                 "  rolu set -y battery.mode=24V battery.24v.lbp-threshold=22.5 battery.lbp=on\n"
                 "Every value is checked before the first is sent. What moves a threshold, switches a\n"
                 "protection off or cuts the power asks first, unless -y is given.");
  command
      ->add_option("NAME=VALUE", *assignments, "Settings with their new values; 'rolu list' tells the ranges")
      ->required();
  OnRun(command, invocation, RunSet, assignments);
}

}  // namespace rolu
