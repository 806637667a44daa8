#include <fcntl.h>
#include <fmt/format.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <iostream>

#include "simulator/desk/control_server.h"
#include "simulator/devices/board_root.h"
#include "simulator/program/board_environment.h"
#include "simulator/program/board_programs.h"
#include "simulator/program/board_settings.h"
#include "simulator/program/child_process.h"
#include "simulator/program/command.h"
#include "simulator/system/system_error.h"

namespace rolu_sim {
namespace {

// The directory of a served board. This object locks it against other processes. It removes what a killed
// board left there, and refuses a directory that holds anything else. The destructor removes the directory if
// this object made it and it is empty.
class ServedDirectory {
 public:
  // Throws UsageError, CommandError or std::system_error.
  explicit ServedDirectory(std::string path) : path_(std::move(path)) {
    if (path_.size() > BoardRoot::kMaxPathLength) {
      throw UsageError(fmt::format("{} is too long a path for the board's sockets: {} characters, at most {}",
                                   path_, path_.size(), BoardRoot::kMaxPathLength));
    }
    MakeAndHold();
    if (!BoardRoot::HoldsOnlyParts(path_)) throw UsageError(path_ + " is not an empty directory");
    BoardRoot::RemoveParts(path_);
  }
  ~ServedDirectory() {
    if (is_made_here_) rmdir(path_.c_str());
  }
  ServedDirectory(const ServedDirectory&) = delete;
  ServedDirectory& operator=(const ServedDirectory&) = delete;

 private:
  void MakeAndHold() {
    is_made_here_ = mkdir(path_.c_str(), 0700) == 0;
    if (!is_made_here_ && errno != EEXIST) ThrowErrno("making a directory for the board, " + path_);
    held_ = UniqueFd(open(path_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!held_ && errno == ENOTDIR) throw UsageError(path_ + " is not an empty directory");
    if (!held_) ThrowErrno("opening " + path_);
    if (flock(held_.get(), LOCK_EX | LOCK_NB) == 0) return;
    if (errno != EWOULDBLOCK) ThrowErrno("locking " + path_);
    throw CommandError(rolu::kBusy, fmt::format("a board is up at {} already", path_));
  }

  const std::string path_;
  bool is_made_here_ = false;
  UniqueFd held_;  // has a lock, which ends with this process, however the process ends
};

int Serve(const BoardSettings& settings, const std::string& named) {
  const HeldSignals signals;
  const std::string directory = BoardDirectory(named);
  const ServedDirectory served(directory);
  PreparedBoard prepared(settings);
  Desk desk(prepared.TakeDeskOptions(directory));
  ScenarioPlayer player(desk, BoardUse::kServed);
  const ControlServer server(desk, player, EndThisProcess);
  player.Play(prepared.Start(desk));
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
  ContinuePrograms(desk);
  return prepared.Conclude(desk, 0, player.TellBoardEnd());
}

}  // namespace

void AddServeCommand(CLI::App& app, Invocation& invocation) {
  CLI::App* const serve =
      NewCommand(app, "serve", "Keeps a board up for several programs and terminals, until Ctrl-C",
                 "rolu-sim serve [OPTIONS] DIR");
  const auto settings = std::make_shared<BoardSettings>();
  const auto directory = std::make_shared<std::string>();
  serve
      ->add_option("DIR", *directory,
                   "Where the board is to be: a directory that is empty, or not there yet (exit status 5: a "
                   "board is up there)")
      ->required();
  AddBoardSettings(*serve, *settings);
  OnRun(serve, invocation, [=] { return Serve(*settings, *directory); });
}

}  // namespace rolu_sim
