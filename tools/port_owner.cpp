#include "tools/port_owner.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <charconv>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <system_error>
#include <vector>

namespace rolu {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kShownCommandLength = 60;

bool IsSameFile(const struct stat& port, const struct stat& file) {
  if (port.st_dev == file.st_dev && port.st_ino == file.st_ino) return true;
  return S_ISCHR(port.st_mode) && S_ISCHR(file.st_mode) && port.st_rdev == file.st_rdev;
}

// The N of a pseudo-terminal /dev/pts/N. Linux gives pseudo-terminals these major numbers.
std::optional<unsigned> PseudoTerminalNumber(const struct stat& port) {
  constexpr unsigned kFirstMajor = 136;
  constexpr unsigned kLastMajor = 143;
  const unsigned device_major = major(port.st_rdev);
  if (!S_ISCHR(port.st_mode) || device_major < kFirstMajor || device_major > kLastMajor) return std::nullopt;
  return (device_major - kFirstMajor) * 256 + minor(port.st_rdev);
}

// Whether the descriptor is the other end of pseudo-terminal `number`.
bool IsMasterOf(const fs::path& process, const fs::path& descriptor, unsigned number) {
  std::ifstream info(process / "fdinfo" / descriptor.filename());
  std::string key;
  unsigned index = 0;
  while (info >> key) {
    if (key == "tty-index:" && info >> index) return index == number;
  }
  return false;
}

// Empty when the directory cannot be read; `error` says why.
std::vector<fs::path> EntriesOf(const fs::path& directory, std::error_code& error) {
  std::vector<fs::path> entries;
  for (fs::directory_iterator at(directory, error); !error && at != fs::directory_iterator();
       at.increment(error)) {
    entries.push_back(at->path());
  }
  return entries;
}

enum class Holding { kNothing, kPort, kFarEnd, kUnknown };

Holding WhatProcessHolds(const fs::path& process, const struct stat& port) {
  const std::optional<unsigned> number = PseudoTerminalNumber(port);
  std::error_code error;
  Holding holding = Holding::kNothing;
  for (const fs::path& descriptor : EntriesOf(process / "fd", error)) {
    std::error_code closed_meanwhile;
    const std::string target = fs::read_symlink(descriptor, closed_meanwhile);
    // Files elsewhere are skipped: a stat of a file on an unreachable server would hang.
    if (!target.starts_with("/dev/") && !target.starts_with("/proc/")) continue;
    if (number && target == "/dev/ptmx" && IsMasterOf(process, descriptor, *number)) return Holding::kFarEnd;
    struct stat file {};
    if (stat(descriptor.c_str(), &file) == 0 && IsSameFile(port, file)) holding = Holding::kPort;
  }
  return error == std::errc::permission_denied ? Holding::kUnknown : holding;
}

std::string CommandOf(const fs::path& process) {
  std::ifstream file(process / "cmdline", std::ios::binary);
  std::string command{std::istreambuf_iterator<char>(file), {}};
  command.erase(command.find_last_not_of('\0') + 1);
  for (char& character : command) {
    const bool prints = character >= ' ' && character <= '~';
    if (!prints) character = character == '\0' ? ' ' : '?';
  }
  if (command.size() > kShownCommandLength) command = command.substr(0, kShownCommandLength) + "...";
  return command.empty() ? "unknown command" : command;
}

std::optional<pid_t> ProcessNumber(const std::string& name) {
  pid_t pid = 0;
  const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), pid);
  if (error != std::errc() || end != name.data() + name.size() || pid == getpid()) return std::nullopt;
  return pid;
}

}  // namespace

PortSearch FindPortOwner() {
  PortSearch search;
  struct stat port {};
  if (stat(kMcuPort, &port) != 0) return search;
  std::error_code error;
  for (const fs::path& process : EntriesOf("/proc", error)) {
    const std::optional<pid_t> pid = ProcessNumber(process.filename());
    if (!pid) continue;
    const Holding holding = WhatProcessHolds(process, port);
    if (holding == Holding::kUnknown) ++search.hidden_processes;
    if (holding != Holding::kPort) continue;
    search.owner = fmt::format("process {} ({})", *pid, CommandOf(process));
    break;
  }
  return search;
}

int DuplicateOwnPort() {
  struct stat port {};
  if (stat(kMcuPort, &port) != 0) return -1;
  std::error_code error;
  for (const fs::path& path : EntriesOf("/proc/self/fd", error)) {
    const int descriptor = std::stoi(path.filename());
    struct stat file {};
    if (fstat(descriptor, &file) == 0 && IsSameFile(port, file)) {
      return fcntl(descriptor, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    }
  }
  return -1;
}

}  // namespace rolu
