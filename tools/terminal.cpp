#include "tools/terminal.h"

#include <fmt/format.h>
#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <optional>

#include "cli/messages.h"
#include "tools/interrupt.h"
#include "tools/session.h"
#include "tools/status_words.h"

namespace rolu {
namespace {

int first_output_error = 0;

void NoteOutput(bool done) {
  if (!done && first_output_error == 0) first_output_error = errno;
}

// Reads a line of standard input and returns it without its end. Nothing when a signal or the end of the
// input comes first. It reads byte by byte, to leave the input after the line to other programs.
std::optional<std::string> ReadAnswer() {
  std::string answer;
  pollfd descriptors[] = {{STDIN_FILENO, POLLIN, 0}, {interrupt::Descriptor(), POLLIN, 0}};
  while (interrupt::Signal() == 0) {
    if (poll(descriptors, 2, -1) < 0 || interrupt::Signal() != 0) continue;
    char character = 0;
    if (read(STDIN_FILENO, &character, 1) != 1) return std::nullopt;
    if (character == '\n') return answer;
    answer += character;
  }
  return std::nullopt;
}

}  // namespace

void Out(std::string_view text) {
  NoteOutput(std::fwrite(text.data(), 1, text.size(), stdout) == text.size());
}

void OutNow(std::string_view text) {
  Out(text);
  NoteOutput(std::fflush(stdout) == 0);
}

int OutputError() {
  NoteOutput(std::fflush(stdout) == 0);
  return first_output_error;
}

void Confirm(const CommonOptions& options, const std::vector<std::string>& consequences) {
  if (options.yes || consequences.empty()) return;
  for (const std::string& consequence : consequences) Say("this " + consequence);
  fmt::print(stderr, "rolu: go on? [y/N] ");
  const std::optional<std::string> answer = ReadAnswer();
  if (!answer) fmt::print(stderr, "\n");
  interrupt::ThrowIfRequested();
  if (answer == "y" || answer == "Y" || answer == "yes") return;
  throw CommandError(kPartlyDone,
                     answer ? "nothing was done, because the answer was not yes"
                            : "nothing was done, because nobody answered; -y goes on without asking");
}

}  // namespace rolu
