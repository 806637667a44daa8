#include "simulator/devices/port_holders.h"

#include <fmt/format.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <system_error>

#include "simulator/system/processes.h"

namespace rolu_sim {
namespace {

namespace fs = std::filesystem;

std::string DirectoryOf(pid_t process) {
  return fmt::format("/proc/{}", process);
}

std::string ProgramOf(pid_t process) {
  std::string name;
  std::getline(std::ifstream(DirectoryOf(process) + "/comm"), name);
  return name;
}

// Processes and their descriptors may vanish meanwhile.
bool Holds(pid_t process, const std::string& device_path) {
  std::error_code failed;
  for (fs::directory_iterator at(DirectoryOf(process) + "/fd", failed); !failed && at != fs::end(at);
       at.increment(failed)) {
    std::error_code closed;
    if (fs::read_symlink(at->path(), closed) == device_path) return true;
  }
  return false;
}

// All but this process.
std::vector<pid_t> HoldersOf(const std::string& device_path) {
  std::vector<pid_t> holders = Processes();
  std::erase_if(holders, [&](pid_t process) { return process == getpid() || !Holds(process, device_path); });
  return holders;
}

}  // namespace

std::vector<std::string> PortHolders::NoteOpening(pid_t process, const std::string& device_path,
                                                  bool is_open) {
  std::erase_if(openers_, [&](const auto& opener) { return !Holds(opener.first, device_path); });
  if (openers_.empty() && is_open) {
    for (const pid_t holder : HoldersOf(device_path)) openers_[holder];
  }
  std::vector<std::string> conflicts;
  std::set<pid_t>& named_with = openers_[process];
  for (auto& [holder, named_with_holder] : openers_) {
    if (holder == process) continue;
    const bool is_new = named_with.insert(holder).second;
    if (!named_with_holder.insert(process).second || !is_new) continue;
    conflicts.push_back(
        fmt::format("program \"{}\" ({}) opens the MCU's port while \"{}\" ({}) has it open: they take each "
                    "other's answers",
                    ProgramOf(process), process, ProgramOf(holder), holder));
  }
  return conflicts;
}

std::vector<std::string> PortHolders::FindAll(const std::string& device_path) {
  std::vector<std::string> holders;
  for (const pid_t process : HoldersOf(device_path))
    holders.push_back(fmt::format("{} ({})", ProgramOf(process), process));
  return holders;
}

}  // namespace rolu_sim
