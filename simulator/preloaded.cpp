// Holds a path of the build directory. The installed rolu-sim links nothing of this file.

#include "simulator/preloaded.h"

#include <dlfcn.h>
#include <stdlib.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>

#include "simulator/environment.h"

namespace rolu_sim {
namespace {

// Set for the second start, so that a program whose object cannot be loaded does not restart itself for ever.
constexpr char kSecondStartVariable[] = "ROLU_SIM_SECOND_START";

[[noreturn]] void GiveUp(const char* program, const std::string& why) {
  std::fprintf(stderr, "%s: the simulated board needs %s loaded before it: %s\n", program,
               ROLU_SIM_PRELOAD_PATH, why.c_str());
  _exit(2);
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

}  // namespace rolu_sim
