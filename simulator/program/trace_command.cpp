// rolu-sim trace and scenarios: what can be looked at.

#include <fmt/format.h>

#include <iostream>

#include "cli/exit_status.h"
#include "cli/messages.h"
#include "simulator/control/control_client.h"
#include "simulator/program/board_environment.h"
#include "simulator/program/commands.h"
#include "simulator/scenario/scenario_files.h"
#include "simulator/trace/trace_record.h"

namespace rolu_sim {
namespace {

int Check(const std::vector<std::string>& files) {
  int status = 0;
  for (const std::string& name : files) {
    try {
      const ScenarioFile file = ReadScenarioFile(name);
      const Scenario scenario = ParseScenario(file.text, file.name);
      std::cout << fmt::format("{}: good, {} events\n", name, scenario.events.size());
    } catch (const std::exception& problem) {
      rolu::SayProblem(problem.what());
      status = rolu::kWrongUse;
    }
  }
  return status;
}

}  // namespace

int ShowTrace(const TraceOptions& options) {
  const std::string directory = BoardDirectory(options.board.directory);
  ControlClient client(directory, options.board.patience);
  client.Ask({{"trace", options.follow ? "follow" : "past"}});
  std::optional<ControlClient::TimePoint> deadline;
  if (options.length.count() > 0) deadline = std::chrono::steady_clock::now() + options.length;
  const TraceFormat format = options.json ? TraceFormat::kJson : TraceFormat::kText;
  while (const auto line = client.ReadLine(deadline)) {
    std::cout << FormatLine(TraceRecordFromJson(Json::parse(*line)), format) << std::flush;
    if (!std::cout) return rolu::kPartlyDone;
  }
  if (options.follow && !client.TimedOut()) {
    rolu::Say(fmt::format("the board at {} went down", directory));
  }
  return 0;
}

int Scenarios(const ScenariosOptions& options) {
  if (!options.checked.empty()) return Check(options.checked);
  if (!options.shown.empty()) {
    std::cout << ReadScenarioFile(options.shown).text;
    return 0;
  }
  for (const std::string& name : ReadyScenarioNames()) {
    const ScenarioFile file = ReadScenarioFile(name);
    std::cout << fmt::format("{:<18}{}\n", name, ParseScenario(file.text, file.name).description);
  }
  return 0;
}

}  // namespace rolu_sim
