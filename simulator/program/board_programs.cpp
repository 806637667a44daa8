#include "simulator/program/board_programs.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <set>
#include <thread>

#include "simulator/devices/board_paths.h"
#include "simulator/system/processes.h"
#include "simulator/system/unique_fd.h"

namespace rolu_sim {
namespace {

// The environment that a process was started with; empty if it is not ours to read, or gone.
std::string EnvironmentOf(pid_t process) {
  const UniqueFd file(open(("/proc/" + std::to_string(process) + "/environ").c_str(), O_RDONLY | O_CLOEXEC));
  std::string environment;
  std::array<char, 16384> buffer{};
  ssize_t length = 0;
  while (file && (length = read(file.get(), buffer.data(), buffer.size())) > 0) {
    environment.append(buffer.data(), static_cast<std::size_t>(length));
  }
  return environment;
}

// A rolu-sim that steers or watches the board from there is no program of the board.
bool RunsThisExecutable(pid_t process) {
  struct stat own {};
  struct stat other {};
  return stat("/proc/self/exe", &own) == 0 &&
         stat(("/proc/" + std::to_string(process) + "/exe").c_str(), &other) == 0 &&
         own.st_dev == other.st_dev && own.st_ino == other.st_ino;
}

std::set<pid_t> ProgramsOn(const std::string& board_directory) {
  const std::string variable = std::string(1, '\0') + kRootVariable + '=' + board_directory + '\0';
  std::set<pid_t> found;
  for (const pid_t process : Processes()) {
    const bool is_on_board = ('\0' + EnvironmentOf(process)).find(variable) != std::string::npos;
    if (is_on_board && !RunsThisExecutable(process)) found.insert(process);
  }
  return found;
}

// A program may start another one meanwhile, so this looks again until there is nothing new: for SIGKILL
// until the programs are gone. A program that the system does not let go (it waits for a device, say) is
// left.
void SignalPrograms(const std::string& board_directory, int signal) {
  constexpr std::chrono::milliseconds kBetweenLooks(1);
  constexpr int kMostLooks = 500;
  std::set<pid_t> signalled;
  for (int look = 0; look < kMostLooks; ++look) {
    const std::set<pid_t> present = ProgramsOn(board_directory);
    bool is_done = true;
    for (const pid_t program : present) {
      const bool is_new = signalled.insert(program).second;
      if (is_new) kill(program, signal);
      if (is_new || signal == SIGKILL) is_done = false;
    }
    if (is_done) return;
    std::this_thread::sleep_for(kBetweenLooks);
  }
}

}  // namespace

void FollowComputer(const McuEvent& event, const std::string& board_directory) {
  if (event.ends_programs || event.kind == McuEventKind::kPowerOn) EndPrograms(board_directory);
  if (event.kind == McuEventKind::kSuspend) SignalPrograms(board_directory, SIGSTOP);
  if (event.kind == McuEventKind::kResume) SignalPrograms(board_directory, SIGCONT);
}

void EndPrograms(const std::string& board_directory) {
  SignalPrograms(board_directory, SIGKILL);
}

void ContinuePrograms(Desk& desk) {
  const bool is_suspended = desk.board().mcu().WithModel(
      [](McuModel& mcu) { return mcu.computer.power == ComputerPower::kSuspended; });
  if (is_suspended) SignalPrograms(desk.board().root().path(), SIGCONT);
}

}  // namespace rolu_sim
