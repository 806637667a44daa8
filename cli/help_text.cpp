#include "cli/help_text.h"

#include <stdlib.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <iostream>

#include "cli/command_line.h"

namespace rolu {
namespace {

// A narrower column of explanations is hard to read.
constexpr std::size_t kNarrowest = 20;

std::size_t WidthOfOutput() {
  const char* const columns = getenv("COLUMNS");  // NOLINT(concurrency-mt-unsafe): nobody writes it
  std::size_t width = 0;
  if (columns != nullptr) {
    std::from_chars(columns, columns + std::char_traits<char>::length(columns), width);
  }
  winsize size{};
  if (width == 0 && ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0) width = size.ws_col;
  return width;
}

// Where the line goes on: under its last column, unless that is too far to the right.
std::size_t Indentation(std::string_view line, std::size_t width) {
  const std::size_t margin = std::min(line.find_first_not_of(' '), line.size());
  std::size_t column = margin;
  for (std::size_t gap = line.find("  ", margin); gap != std::string_view::npos && gap < width;
       gap = line.find("  ", column)) {
    column = std::min(line.find_first_not_of(' ', gap), line.size());
  }
  return column + kNarrowest <= width ? column : margin;
}

// Appends the line in parts that fit. A word that is wider than the rest of a line stays whole.
void AppendWrapped(std::string& text, std::string_view line, std::size_t width) {
  const std::size_t indentation = Indentation(line, width);
  std::size_t begin = 0;  // of the part, behind its indentation
  std::size_t room = width;
  while (line.size() - begin > room) {
    const std::size_t first_word = line.find_first_not_of(' ', begin);
    std::size_t blank = line.rfind(' ', begin + room);
    if (blank == std::string_view::npos || blank < first_word) blank = line.find(' ', begin + room);
    if (blank == std::string_view::npos) break;
    const std::size_t next = std::min(line.find_first_not_of(' ', blank), line.size());
    const std::size_t end = line.find_last_not_of(' ', blank) + 1;
    text.append(line.substr(begin, end - begin)).append("\n").append(indentation, ' ');
    begin = next;
    room = width - indentation;
  }
  text.append(line.substr(begin)).append("\n");
}

}  // namespace

std::string HelpOf(const CLI::App& command) {
  return command.get_formatter()->make_help(&command, PathOf(command), CLI::AppFormatMode::Normal);
}

std::string FitToOutput(std::string_view text, std::string_view program) {
  return Wrapped(text, WidthOfOutput(), program);
}

void PrintHelp(std::string_view text, std::string_view program) {
  std::cout << FitToOutput(text, program) << std::flush;
}

std::string Wrapped(std::string_view text, std::size_t width, std::string_view program) {
  if (width < kNarrowest) return std::string(text);
  std::string wrapped;
  while (!text.empty()) {
    const std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    const std::size_t margin = std::min(line.find_first_not_of(' '), line.size());
    const bool is_command = margin > 0 && line.substr(margin).starts_with(program);
    if (is_command || line.size() <= width) {
      wrapped.append(line).append("\n");
    } else {
      AppendWrapped(wrapped, line, width);
    }
  }
  return wrapped;
}

}  // namespace rolu
