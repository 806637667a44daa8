#include "cli/messages.h"

#include <errno.h>
#include <fmt/format.h>
#include <stdlib.h>
#include <unistd.h>

#include <cstdio>
#include <system_error>

namespace rolu {
namespace {

// No thread writes the environment while another one runs.
std::string Environment(const char* name) {
  const char* const value = getenv(name);  // NOLINT(concurrency-mt-unsafe)
  return value == nullptr ? "" : value;
}

// Standard error may be closed: a message that cannot be written does not end the work.
void Print(std::string_view text, bool is_red) {
  std::fputs(fmt::format("{}{}:{} {}\n", is_red ? "\033[31m" : "", program_invocation_short_name,
                         is_red ? "\033[0m" : "", text)
                 .c_str(),
             stderr);
}

}  // namespace

bool MayColour(int fd) {
  return isatty(fd) == 1 && Environment("NO_COLOR").empty() && Environment("TERM") != "dumb";
}

void Say(std::string_view text) {
  Print(text, false);
}

void SayProblem(std::string_view text) {
  Print(text, MayColour(STDERR_FILENO));
}

std::string ErrnoText(int error) {
  return std::generic_category().message(error);
}

}  // namespace rolu
