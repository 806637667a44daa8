#include <fmt/format.h>

#include "cli/messages.h"
#include "tools/command.h"
#include "tools/report.h"
#include "tools/status_words.h"

namespace rolu {
namespace {

struct GetOptions {
  std::vector<std::string> names;
  bool value_only = false;
};

ExitStatus RunGet(const GetOptions& options, const CommonOptions& common) {
  const std::vector<const Setting*> settings = SettingsNamed(options.names);
  Session session(common);
  Report report;
  Outcome outcome;
  for (const Setting* const setting : settings) {
    const ROLU_STATUS status = ReadInto(session, *setting, report, outcome);
    if (status == ROLU_STATUS_SUCCESS) continue;
    if (common.json) report.AddProblem(setting->name, status);
    SayProblem(fmt::format("could not read {}: {}", setting->name, WhyNotRead(*setting, status)));
  }
  if (options.value_only && !common.json) {
    report.PrintValues();
  } else {
    report.Print(common.json);
  }
  return outcome.Result();
}

}  // namespace

void AddGetCommand(CLI::App& app, Invocation& invocation) {
  auto options = std::make_shared<GetOptions>();
  CLI::App* const command =
      NewCommand(app, "get", "Read settings by name",
                 "  rolu get battery.voltage\n  rolu get ignition alarm.time\n  rolu get -n battery.voltage");
  command->add_option("NAME", options->names, "Names of settings or groups; 'rolu list' lists them")
      ->required();
  command->add_flag("-n,--value-only", options->value_only, "Print the values only, without names and units");
  OnRun(command, invocation, RunGet, options);
}

}  // namespace rolu
