// rolu-sim run, serve and join: programs on a board.

#include <fmt/format.h>
#include <sys/types.h>
#include <unistd.h>

#include <iostream>

#include "cli/exit_status.h"
#include "cli/messages.h"
#include "simulator/control/control_client.h"
#include "simulator/desk/control_server.h"
#include "simulator/program/board_environment.h"
#include "simulator/program/child_process.h"
#include "simulator/program/commands.h"
#include "simulator/program/served_directory.h"

namespace rolu_sim {
namespace {

// The board ends as if somebody had ended this process.
void EndThisProcess() {
  kill(getpid(), SIGTERM);
}

// What is to be said of a board at its end, and the exit status that it makes of the program's.
int Conclude(Desk& desk, const BoardSettings& settings, int status) {
  if (desk.replay() != nullptr) rolu::Say(desk.replay()->Summary());
  if (!settings.fail_on_bite || desk.BiteCount() == 0) return status;
  rolu::SayProblem(fmt::format("failed: the watchdog bit (--fail-on-bite); bites: {}", desk.BiteCount()));
  return rolu::kBitten;
}

}  // namespace

int Run(const RunOptions& options) {
  const HeldSignals signals;
  PreparedBoard prepared(options.board);
  Desk desk(prepared.TakeDeskOptions({}));
  ControlServer server(desk, EndThisProcess);
  Scenario scenario = prepared.Start(desk);
  MeetBoard(desk.board().root().path());
  server.Play(std::move(scenario));
  return Conclude(desk, options.board, RunChild(options.command, signals));
}

int Serve(const ServeOptions& options) {
  const HeldSignals signals;
  const ServedDirectory served(BoardDirectory(options.directory));
  const std::string& directory = served.path();
  PreparedBoard prepared(options.board);
  Desk desk(prepared.TakeDeskOptions(directory));
  ControlServer server(desk, EndThisProcess);
  server.Play(prepared.Start(desk));
  std::cout << fmt::format(
                   "A board is up at {0}. Ctrl-C ends it, and so does: rolu-sim ctl --board {0} stop\n"
                   "To run a program on it, put one of these lines in front:\n"
                   "  rolu-sim join {0} --\n"
                   "  {1}\n",
                   ShellWord(directory), ShellAssignments(directory))
            << std::flush;
  int number = 0;
  while (number != SIGINT && number != SIGTERM && number != SIGHUP && number != SIGQUIT) {
    number = signals.Wait().si_signo;
  }
  return Conclude(desk, options.board, 0);
}

int Join(const JoinOptions& options) {
  const std::string directory = BoardDirectory(options.board.directory);
  { const ControlClient client(directory, options.board.patience); }
  MeetBoard(directory);
  return BecomeProgram(options.command);
}

}  // namespace rolu_sim
