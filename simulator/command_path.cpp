#include "simulator/command_path.h"

#include <stdlib.h>

#include <sstream>
#include <string_view>

#include "simulator/system_error.h"

namespace rolu_sim {
namespace {

constexpr char kVariable[] = "PATH";

// What the C library searches without the variable.
constexpr std::string_view kDefaultList = "/bin:/usr/bin";

std::string PresentList() {
  const char* const list = getenv(kVariable);
  return std::string(list == nullptr ? kDefaultList : list);
}

void SetList(const std::string& list) {
  if (setenv(kVariable, list.c_str(), 1) != 0) ThrowErrno("setting the environment");
}

std::string Without(const std::string& list, const std::string& directory) {
  std::string rest;
  std::istringstream entries(list);
  bool is_first = true;
  for (std::string entry; std::getline(entries, entry, ':');) {
    if (entry == directory) continue;
    if (!is_first) rest += ':';
    rest += entry;
    is_first = false;
  }
  return rest;
}

}  // namespace

void AddCommandDirectory(const std::string& directory) {
  const std::string others = Without(PresentList(), directory);
  SetList(others.empty() ? directory : directory + ':' + others);
}

void RemoveCommandDirectory(const std::string& directory) {
  const std::string present = PresentList();
  const std::string others = Without(present, directory);
  if (others != present) SetList(others);
}

}  // namespace rolu_sim
