#include "simulator/preloaded.h"

#include <dlfcn.h>
#include <fmt/format.h>
#include <stdlib.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <vector>

#include "simulator/system_error.h"

namespace rolu_sim {
namespace {

// Set for the second start, so that an object that cannot be loaded does not make a program start
// itself for ever.
constexpr char kSecondStartVariable[] = "ROLU_SIM_SECOND_START";

[[noreturn]] void GiveUp(const char* program, const std::string& why) {
  std::fprintf(stderr, "%s: the simulated board needs %s loaded before it: %s\n", program,
               ROLU_SIM_PRELOAD_PATH, why.c_str());
  _exit(2);
}

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

// The directories that are searched for commands, without one; what the C library searches when the
// variable is not set.
std::string CommandDirectoriesWithout(const std::string& directory) {
  const char* const list = getenv("PATH");
  std::vector<std::string_view> entries = Split(list == nullptr ? "/bin:/usr/bin" : list, ":");
  entries.erase(std::remove(entries.begin(), entries.end(), directory), entries.end());
  return fmt::format("{}", fmt::join(entries, ":"));
}

}  // namespace

void EnsurePreloaded(int /*argc*/, char** argv) {
  if (IsPreloaded()) {
    unsetenv(kSecondStartVariable);
    return;
  }
  if (getenv(kSecondStartVariable) != nullptr) GiveUp(argv[0], "the loader did not take it");
  const char* const present = getenv("LD_PRELOAD");
  SetEnvironment("LD_PRELOAD", PreloadListWith(present == nullptr ? "" : present, ROLU_SIM_PRELOAD_PATH));
  SetEnvironment(kSecondStartVariable, "1");
  execv("/proc/self/exe", argv);
  GiveUp(argv[0], std::string("starting this program again: ") + std::strerror(errno));
}

bool IsPreloaded() {
  return dlsym(RTLD_DEFAULT, "rolu_sim_preload_version") != nullptr;
}

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
