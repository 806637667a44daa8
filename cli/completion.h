#pragma once

#include <CLI/CLI.hpp>
#include <map>
#include <string>

namespace rolu {

// What can stand at a place of a command line: words, and paths of one of these kinds.
struct Candidates {
  enum class Paths { kNone, kFiles, kDirectories, kProgram };

  std::string words;
  Paths paths = Paths::kNone;
};

// What a command line's own definitions do not say about its words.
struct CompletionTable {
  // By command, "rolu get": beside its subcommands. A command that is only here is a word that has values.
  std::map<std::string, Candidates> arguments;
  // By "--option", and by "rolu set=battery.mode" for what follows battery.mode=.
  std::map<std::string, Candidates> values;
};

// The completion for bash.
std::string BashCompletion(const CLI::App& app, CompletionTable table);

// Adds a word to a list of words with blanks between.
void AddWord(std::string& words, std::string_view word);

}  // namespace rolu
