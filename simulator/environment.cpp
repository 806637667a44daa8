#include "simulator/environment.h"

#include <fmt/format.h>
#include <stdlib.h>

#include <algorithm>
#include <array>
#include <vector>

#include "simulator/system/system_error.h"

namespace rolu_sim {
namespace {

std::vector<std::string_view> Split(std::string_view list, std::string_view separators) {
  std::vector<std::string_view> entries;
  while (true) {
    const std::size_t end = list.find_first_of(separators);
    entries.push_back(list.substr(0, end));
    if (end == std::string_view::npos) return entries;
    list.remove_prefix(end + 1);
  }
}

bool IsSanitizerRuntime(std::string_view object) {
  static constexpr std::array<std::string_view, 5> kNames = {"libasan.", "libtsan.", "libubsan.", "liblsan.",
                                                             "libclang_rt."};
  const std::string_view name = object.substr(object.rfind('/') + 1);
  return std::any_of(kNames.begin(), kNames.end(), [&](auto runtime) { return name.starts_with(runtime); });
}

// The directories of PATH without `directory`. If PATH is not set, the C library's own list stands in for it.
std::string CommandDirectoriesWithout(const std::string& directory) {
  const char* const list = getenv("PATH");
  std::vector<std::string_view> entries = Split(list == nullptr ? "/bin:/usr/bin" : list, ":");
  entries.erase(std::remove(entries.begin(), entries.end(), directory), entries.end());
  return fmt::format("{}", fmt::join(entries, ":"));
}

}  // namespace

std::string PreloadListWith(std::string_view present, std::string_view object) {
  std::vector<std::string_view> objects = Split(present, ": ");
  objects.erase(std::remove_if(objects.begin(), objects.end(),
                               [&](auto entry) { return entry.empty() || entry == object; }),
                objects.end());
  objects.insert(std::stable_partition(objects.begin(), objects.end(), IsSanitizerRuntime), object);
  return fmt::format("{}", fmt::join(objects, ":"));
}

void SetEnvironment(const char* variable, const std::string& value) {
  if (setenv(variable, value.c_str(), 1) != 0) ThrowErrno("setting the environment");
}

void AddCommandDirectory(const std::string& directory) {
  const std::string others = CommandDirectoriesWithout(directory);
  SetEnvironment("PATH", others.empty() ? directory : directory + ':' + others);
}

void RemoveCommandDirectory(const std::string& directory) {
  const char* const present = getenv("PATH");
  const std::string others = CommandDirectoriesWithout(directory);
  if (present != nullptr && others != present) SetEnvironment("PATH", others);
}

}  // namespace rolu_sim
