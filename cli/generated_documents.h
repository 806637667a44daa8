#pragma once

// Makes the man page and the completion from the definitions of a command line.

#include <CLI/CLI.hpp>
#include <map>
#include <string>
#include <string_view>

namespace rolu {

// A man page with name, synopsis, options, commands and exit statuses. A program adds its own sections at the
// end, made with the functions below. `usage` gives the usage line of a command.
std::string ManPage(const CLI::App& app, std::string_view version, std::string_view purpose,
                    std::string (*usage)(const CLI::App&));

// Escapes a text, so that the formatter reads no part of it as a request.
std::string RoffText(std::string_view text);

// A term and its explanation; `body` may hold requests.
std::string RoffItem(std::string_view term, std::string_view body);

// What can stand at one place of a command line: words, and a kind of path.
struct Candidates {
  enum class Paths { kNone, kFiles, kDirectories, kProgram };

  std::string words;
  Paths paths = Paths::kNone;
};

// The candidates that the definitions of the command line do not give.
struct CompletionTable {
  // By command, as "rolu get": what it takes besides its subcommands. A key that is not a command is a word
  // that takes values.
  std::map<std::string, Candidates> arguments;
  // By "--option"; by "rolu set=battery.mode" for the values that follow battery.mode=.
  std::map<std::string, Candidates> values;
};

// The completion for bash.
std::string BashCompletion(const CLI::App& app, CompletionTable table);

// Adds a word to a list of words with blanks between.
void AddWord(std::string& words, std::string_view word);

}  // namespace rolu
