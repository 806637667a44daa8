#include "simulator/desk/control_client.h"
#include "simulator/program/board_environment.h"
#include "simulator/program/child_process.h"
#include "simulator/program/command.h"
#include "simulator/program/program_check.h"

namespace rolu_sim {
namespace {

int Join(const BoardChoice& board, const std::vector<std::string>& command) {
  const std::string directory = BoardDirectory(board.directory);
  { const ControlClient client(directory, board.patience); }
  MeetBoard(directory);
  return BecomeProgram(PrepareProgram(command, directory));
}

}  // namespace

void AddJoinCommand(CLI::App& app, Invocation& invocation) {
  CLI::App* const join = NewCommand(app, "join", "Runs a program on a board that is up",
                                    "rolu-sim join DIR [--wait DURATION] [--] PROGRAM [ARGUMENT...]");
  join->prefix_command();
  const auto board = std::make_shared<BoardChoice>();
  join->add_option("DIR", board->directory, "The board's directory")->required();
  AddWaitOption(*join, *board);
  OnRun(join, invocation, [=, &invocation] { return Join(*board, WordsFor(*join, invocation, "PROGRAM")); });
}

}  // namespace rolu_sim
