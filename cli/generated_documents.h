#pragma once

// The man page and the completion that come out of a command line's own definitions.

#include <CLI/CLI.hpp>
#include <map>
#include <string>
#include <string_view>

namespace rolu {

// A man page: name, synopsis, options, commands and exit statuses. A program adds its other sections at the
// end, made of the pieces below. `usage` gives a command's form.
std::string ManPage(const CLI::App& app, std::string_view version, std::string_view purpose,
                    std::string (*usage)(const CLI::App&));

// Escapes a text, so that the formatter takes no part of it for a request.
std::string RoffText(std::string_view text);

// A term and what it is; `body` may hold requests.
std::string RoffItem(std::string_view term, std::string_view body);

// The words and the kind of paths that can stand at a place of a command line.
struct Candidates {
  enum class Paths { kNone, kFiles, kDirectories, kProgram };

  std::string words;
  Paths paths = Paths::kNone;
};

// What a command line's definitions do not say about its words.
struct CompletionTable {
  // By command, "rolu get": more than its subcommands. A key that is no command is a word that has values.
  std::map<std::string, Candidates> arguments;
  // By "--option", and by "rolu set=battery.mode" for what follows battery.mode=.
  std::map<std::string, Candidates> values;
};

// The completion for bash.
std::string BashCompletion(const CLI::App& app, CompletionTable table);

// Adds a word to a list of words with blanks between.
void AddWord(std::string& words, std::string_view word);

}  // namespace rolu
