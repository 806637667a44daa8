#include "tools/output.h"

#include <cerrno>
#include <cstdio>

namespace rolu {
namespace {

int first_error = 0;

void Note(bool done) {
  if (!done && first_error == 0) first_error = errno;
}

}  // namespace

void Out(std::string_view text) {
  Note(std::fwrite(text.data(), 1, text.size(), stdout) == text.size());
}

void OutNow(std::string_view text) {
  Out(text);
  Note(std::fflush(stdout) == 0);
}

int OutputError() {
  Note(std::fflush(stdout) == 0);
  return first_error;
}

}  // namespace rolu
