#include <algorithm>
#include <optional>

#include "cli/exit_status.h"
#include "cli/messages.h"
#include "cli/nearest_name.h"
#include "simulator/desk/control_server.h"
#include "simulator/program/board_environment.h"
#include "simulator/program/board_programs.h"
#include "simulator/program/board_settings.h"
#include "simulator/program/child_process.h"
#include "simulator/program/command.h"
#include "simulator/program/program_check.h"

namespace rolu_sim {
namespace {

// What ended the computer, and the program with it, which has ended at `program_end`. An order to cut the
// power is carried out first; a cut for another reason that comes only now did not end the program.
std::optional<McuEventKind> EndOfComputer(Desk& desk, TimePoint program_end) {
  McuSerial& mcu = desk.board().mcu();
  while (mcu.WithModel([](McuModel& model) { return model.IsPowerCutOrdered(); })) {
    mcu.WaitForEvent(McuEventKind::kPowerCut, std::chrono::milliseconds(10));
  }
  const std::vector<McuEvent> events = mcu.Events();
  const auto end = std::ranges::find_if(events, [program_end](const McuEvent& event) {
    return event.ends_programs && (event.time <= program_end || event.cause == "ordered");
  });
  return end == events.end() ? std::nullopt : std::optional(end->kind);
}

// An end that a scenario expected is a success. A program that shut down in time has ended by itself.
int StatusOf(int program_status, std::optional<McuEventKind> end, const ScenarioOutcome& outcome) {
  if (!end || outcome.has_shut_down) return program_status;
  if (outcome.expected_events.contains(std::string(NameOf(*end)))) return rolu::kDone;
  switch (*end) {
    case McuEventKind::kWatchdogBite:
      return rolu::kBitten;
    case McuEventKind::kReset:
      return rolu::kReset;
    default:
      return rolu::kPowerCut;
  }
}

// Tells a program that failed on its own from one that did not see the board. Programs end with 2 when the
// user made a mistake.
void SayIfUnused(const DeviceServer& devices, int status) {
  const bool program_failed = status != 0 && status != rolu::kWrongUse && status < rolu::kBoardFailed;
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
  ScenarioPlayer player(desk, BoardUse::kOneProgram, EndProgram);
  const ControlServer server(desk, player, EndThisProcess);
  Scenario scenario = prepared.Start(desk);
  const std::string directory = desk.board().root().path();
  MeetBoard(directory);
  const std::vector<std::string> words = PrepareProgram(command, directory);
  // The program itself ends even if it has dropped the environment that names the board.
  desk.OnEvent([](const McuEvent& event) {
    if (event.ends_programs) EndProgram();
  });
  player.Play(std::move(scenario));
  const int program_status = RunChild(words, signals, [&] { ContinuePrograms(desk); });
  const TimePoint program_end = std::chrono::steady_clock::now();
  SayIfUnused(desk.board().devices(), program_status);
  player.TellProgramEnd(program_status);
  const std::optional<McuEventKind> end = EndOfComputer(desk, program_end);
  const ScenarioOutcome outcome = player.TellBoardEnd();
  // A shell that was ended leaves the program that it waited for.
  if (outcome.settled_early) EndPrograms(directory);
  return prepared.Conclude(desk, StatusOf(program_status, end, outcome), outcome);
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
