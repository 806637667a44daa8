#include "simulator/system/processes.h"

#include <charconv>
#include <filesystem>
#include <string>
#include <system_error>

namespace rolu_sim {

std::vector<pid_t> Processes() {
  namespace fs = std::filesystem;
  std::vector<pid_t> processes;
  std::error_code failed;
  for (fs::directory_iterator at("/proc", failed); !failed && at != fs::end(at); at.increment(failed)) {
    const std::string name = at->path().filename();
    const char* const name_end = name.data() + name.size();
    pid_t process = 0;
    const auto [end, error] = std::from_chars(name.data(), name_end, process);
    if (error == std::errc() && end == name_end) processes.push_back(process);
  }
  return processes;
}

}  // namespace rolu_sim
