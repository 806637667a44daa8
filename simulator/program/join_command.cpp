#include <fmt/format.h>

#include <thread>

#include "simulator/desk/control_client.h"
#include "simulator/mcu/mcu_time.h"
#include "simulator/program/board_environment.h"
#include "simulator/program/child_process.h"
#include "simulator/program/command.h"
#include "simulator/program/program_check.h"

namespace rolu_sim {
namespace {

std::string ComputerState(ControlClient& client) {
  const Json answer = client.Ask({{"get", {"power-off"}}});
  return answer.at("board").at("power-off").at("computer").get<std::string>();
}

// Waits until the board is up and its computer is on. Throws NoBoardError.
void AwaitComputer(const std::string& directory, std::chrono::milliseconds patience) {
  constexpr std::chrono::milliseconds kBetweenTries(20);
  const TimePoint deadline = std::chrono::steady_clock::now() + patience;
  ControlClient client(directory, patience);
  for (std::string state = ComputerState(client); state != "on"; state = ComputerState(client)) {
    if (std::chrono::steady_clock::now() >= deadline) {
      throw NoBoardError(fmt::format("the computer of the board at {} is {}", directory, state));
    }
    std::this_thread::sleep_for(kBetweenTries);
  }
}

int Join(const BoardChoice& board, const std::vector<std::string>& command) {
  const std::string directory = BoardDirectory(board.directory);
  AwaitComputer(directory, board.patience);
  MeetBoard(directory);
  return BecomeProgram(PrepareProgram(command, directory));
}

}  // namespace

void AddJoinCommand(CLI::App& app, Invocation& invocation) {
  CLI::App* const join =
      NewCommand(app, "join", "Runs a program on a board that is up and whose computer is on",
                 "rolu-sim join DIR [--wait DURATION] [--] PROGRAM [ARGUMENT...]");
  join->prefix_command();
  const auto board = std::make_shared<BoardChoice>();
  join->add_option("DIR", board->directory, "The board's directory")->required();
  AddWaitOption(*join, *board);
  OnRun(join, invocation, [=, &invocation] { return Join(*board, WordsFor(*join, invocation, "PROGRAM")); });
}

}  // namespace rolu_sim
