#include "simulator/preloaded.h"

#include <dlfcn.h>
#include <stdlib.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>

namespace rolu_sim {
namespace {

// Set for the second start, so that an object that cannot be loaded does not make a program start
// itself for ever.
constexpr char kSecondStartVariable[] = "ROLU_SIM_SECOND_START";

bool IsSanitizerRuntime(std::string_view object) {
  static constexpr std::array<std::string_view, 5> kNames = {"libasan.", "libtsan.", "libubsan.", "liblsan.",
                                                             "libclang_rt."};
  const std::string_view name = object.substr(object.rfind('/') + 1);
  for (const std::string_view runtime : kNames) {
    if (name.substr(0, runtime.size()) == runtime) return true;
  }
  return false;
}

void Append(std::string& list, std::string_view object) {
  if (!list.empty()) list += ':';
  list += object;
}

[[noreturn]] void GiveUp(const char* program, const std::string& why) {
  std::fprintf(stderr, "%s: the simulated board needs %s loaded before it: %s\n", program,
               ROLU_SIM_PRELOAD_PATH, why.c_str());
  _exit(2);
}

}  // namespace

bool IsPreloaded() {
  return dlsym(RTLD_DEFAULT, "rolu_sim_preload_version") != nullptr;
}

std::string PreloadListWith(std::string_view present, std::string_view object) {
  std::string runtimes;
  std::string others;
  while (!present.empty()) {
    const std::size_t end = present.find_first_of(": ");
    const std::string_view entry = present.substr(0, end);
    if (!entry.empty() && entry != object) Append(IsSanitizerRuntime(entry) ? runtimes : others, entry);
    present.remove_prefix(end == std::string_view::npos ? present.size() : end + 1);
  }
  Append(runtimes, object);
  if (!others.empty()) Append(runtimes, others);
  return runtimes;
}

void EnsurePreloaded(int /*argc*/, char** argv) {
  if (IsPreloaded()) {
    unsetenv(kSecondStartVariable);
    return;
  }
  if (getenv(kSecondStartVariable) != nullptr) GiveUp(argv[0], "the loader did not take it");
  const char* const present = getenv("LD_PRELOAD");
  const std::string list = PreloadListWith(present == nullptr ? "" : present, ROLU_SIM_PRELOAD_PATH);
  setenv("LD_PRELOAD", list.c_str(), 1);
  setenv(kSecondStartVariable, "1", 1);
  execv("/proc/self/exe", argv);
  GiveUp(argv[0], std::string("starting this program again: ") + std::strerror(errno));
}

}  // namespace rolu_sim
