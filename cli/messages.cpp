#include "cli/messages.h"

#include <errno.h>
#include <fmt/format.h>
#include <stdlib.h>
#include <unistd.h>

#include <cstdio>
#include <system_error>

namespace rolu {
namespace {

// The environment is read here and written nowhere.
std::string Environment(const char* name) {
  const char* const value = getenv(name);  // NOLINT(concurrency-mt-unsafe)
  return value == nullptr ? "" : value;
}

// Standard error may be closed; a message that cannot be written must not end the work.
void Print(const std::string& line) {
  std::fputs(line.c_str(), stderr);
}

}  // namespace

bool MayColour(int fd) {
  return isatty(fd) == 1 && Environment("NO_COLOR").empty() && Environment("TERM") != "dumb";
}

void Say(std::string_view text) {
  Print(fmt::format("{}: {}\n", program_invocation_short_name, text));
}

void SayProblem(std::string_view text) {
  const bool colour = MayColour(STDERR_FILENO);
  Print(fmt::format("{}{}:{} {}\n", colour ? "\033[31m" : "", program_invocation_short_name,
                    colour ? "\033[0m" : "", text));
}

std::string ErrnoText(int error) {
  return std::generic_category().message(error);
}

}  // namespace rolu
