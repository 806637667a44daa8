#include <algorithm>

#include "cli/exit_status.h"
#include "cli/messages.h"
#include "cli/nearest_name.h"
#include "simulator/desk/control_server.h"
#include "simulator/program/board_environment.h"
#include "simulator/program/board_settings.h"
#include "simulator/program/child_process.h"
#include "simulator/program/command.h"

namespace rolu_sim {
namespace {

// The status of a run whose program ended with its computer. An order to cut the power is carried out first:
// the program may have ended meanwhile.
int StatusOf(Desk& desk, int program_status) {
  McuSerial& mcu = desk.board().mcu();
  while (mcu.WithModel([](McuModel& model) { return model.IsPowerCutOrdered(); })) {
    mcu.WaitForEvent(McuEventKind::kPowerCut, std::chrono::milliseconds(10));
  }
  const std::vector<McuEvent> events = mcu.Events();
  const auto end = std::ranges::find(events, true, &McuEvent::ends_programs);
  if (end == events.end()) return program_status;
  switch (end->kind) {
    case McuEventKind::kWatchdogBite:
      return rolu::kBitten;
    case McuEventKind::kReset:
      return rolu::kReset;
    default:
      return rolu::kPowerCut;
  }
}

int RunOnBoard(const BoardSettings& settings, const std::vector<std::string>& command) {
  const HeldSignals signals;
  PreparedBoard prepared(settings);
  Desk desk(prepared.TakeDeskOptions({}));
  ControlServer server(desk, EndThisProcess);
  Scenario scenario = prepared.Start(desk);
  MeetBoard(desk.board().root().path());
  server.Play(std::move(scenario));
  const int program_status = RunChild(command, signals);
  return prepared.Conclude(desk, StatusOf(desk, program_status));
}

// The user may have meant a missing program as a subcommand.
void SuggestSubcommand(const std::string& word, const CLI::App& app) {
  std::vector<std::string> names;
  for (const CLI::App* const command : app.get_subcommands({})) names.push_back(command->get_name());
  const std::string suggestion = rolu::Suggestion(word, names);
  if (!suggestion.empty()) rolu::Say("it is not a subcommand either" + suggestion);
}

}  // namespace

void AddRunCommand(CLI::App& app, Invocation& invocation) {
  CLI::App* const run = NewCommand(app, "run", "Runs one program on a board of its own",
                                   "rolu-sim run [OPTIONS] [--] PROGRAM [ARGUMENT...]");
  run->prefix_command();
  const auto settings = std::make_shared<BoardSettings>();
  AddBoardSettings(*run, *settings);
  OnRun(run, invocation, [=, &app, &invocation] {
    const std::vector<std::string> command = WordsFor(*run, invocation, "PROGRAM");
    const int status = RunOnBoard(*settings, command);
    if (status == rolu::kNotFound && invocation.is_short_form) SuggestSubcommand(command.front(), app);
    return status;
  });
}

}  // namespace rolu_sim
