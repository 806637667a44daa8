#include "cli/messages.h"
#include "cli/nearest_name.h"
#include "simulator/desk/control_server.h"
#include "simulator/program/board_environment.h"
#include "simulator/program/board_settings.h"
#include "simulator/program/child_process.h"
#include "simulator/program/command.h"
#include "simulator/program/program_check.h"

namespace rolu_sim {
namespace {

// Tells a program that failed on its own from one that did not see the board.
void SayIfUnused(const DeviceServer& devices, int status) {
  const bool program_failed = status != 0 && status < rolu::kBoardFailed;
  if (program_failed && !devices.WasUsed()) {
    rolu::Say(
        "the program failed and opened nothing of the board; man rolu-sim says under LIMITS what does not "
        "see it");
  }
}

int RunOnBoard(const BoardSettings& settings, const std::vector<std::string>& command) {
  const HeldSignals signals;
  PreparedBoard prepared(settings);
  Desk desk(prepared.TakeDeskOptions({}));
  ControlServer server(desk, EndThisProcess);
  Scenario scenario = prepared.Start(desk);
  const std::string directory = desk.board().root().path();
  MeetBoard(directory);
  const std::vector<std::string> words = PrepareProgram(command, directory);
  server.Play(std::move(scenario));
  const int status = RunChild(words, signals);
  SayIfUnused(desk.board().devices(), status);
  return prepared.Conclude(desk, status);
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
