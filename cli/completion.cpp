#include "cli/completion.h"

#include <fmt/format.h>

#include <algorithm>

#include "cli/command_line.h"

namespace rolu {
namespace {

// It finds the innermost command, then offers what that command takes. In bash '=' is a word of its own, but
// for users who have taken it out of COMP_WORDBREAKS.
constexpr std::string_view kFunction = R"(
_PROG() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
  local command=PROGRAM_NAME options=${_PROG_options[PROGRAM_NAME]} at word name= before= words paths
  COMPREPLY=()
  for ((at = 1; at < COMP_CWORD; ++at)); do
    word=${COMP_WORDS[at]}
    if [[ $word == -- && ${_PROG_paths[$command]-} == program ]] && declare -F _command_offset >/dev/null; then
      _command_offset $((at + 1))
      return
    fi
    [[ $word == -* || ( ${COMP_WORDS[at - 1]} == --* && -n ${_PROG_words[${COMP_WORDS[at - 1]}]+known} ) ]] && continue
    [[ -n ${_PROG_words[$command $word]+known} ]] || continue
    command+=" $word"
    options=${_PROG_options[$command]-$options}
  done
  if [[ $current == '=' ]]; then
    name=$previous current=
  elif [[ $previous == '=' ]]; then
    name=${COMP_WORDS[COMP_CWORD - 2]}
  elif [[ $current == ?*=* ]]; then
    name=${current%%=*} before=$name= current=${current#*=}
  elif [[ $previous == --* && -n ${_PROG_words[$previous]+known} ]]; then
    name=$previous
  fi
  if [[ -n $name ]]; then
    [[ $name == --* ]] || name="$command=$name"
    words=${_PROG_words[$name]-} paths=${_PROG_paths[$name]-}
  else
    words=${_PROG_words[$command]} paths=${_PROG_paths[$command]-}
    [[ $current == -* || -z $words$paths ]] && words+=" $options"
  fi
  mapfile -t COMPREPLY < <(compgen -P "$before" -W "$words" -- "$current")
  [[ ${#COMPREPLY[@]} -eq 1 && ${COMPREPLY[0]} == *= ]] && compopt -o nospace 2>/dev/null
  [[ $paths == file || $paths == directory ]] || return 0
  mapfile -t -O "${#COMPREPLY[@]}" COMPREPLY < <(compgen -A "$paths" -- "$current")
  compopt -o filenames 2>/dev/null
  return 0
}
)";

std::string OptionWords(const CLI::App& app) {
  std::string words = app.get_fallthrough() ? OptionWords(*app.get_parent()) : "";
  for (const CLI::Option* const option : app.get_options()) {
    const bool is_repeated = option == app.get_help_ptr() && app.get_fallthrough();
    if (option->get_group().empty() || is_repeated) continue;
    for (const std::string& name : option->get_lnames()) AddWord(words, "--" + name);
    for (const std::string& name : option->get_snames()) AddWord(words, "-" + name);
  }
  return words;
}

void AddCommands(const CLI::App& app, CompletionTable& table, std::string& options) {
  const std::string path = PathOf(app);
  options += fmt::format("  ['{}']='{}'\n", path, OptionWords(app));
  std::string words;
  for (const CLI::App* const command : ShownSubcommands(app)) {
    AddWord(words, command->get_name());
    AddCommands(*command, table, options);
  }
  std::string& all = table.arguments[path].words;
  if (!words.empty()) all = all.empty() ? words : words + ' ' + all;
}

void AddPlace(const std::string& place, const Candidates& candidates, std::string& words,
              std::string& paths) {
  constexpr const char* kKinds[] = {"", "file", "directory", "program"};
  words += fmt::format("  ['{}']='{}'\n", place, candidates.words);
  if (candidates.paths == Candidates::Paths::kNone) return;
  paths += fmt::format("  ['{}']={}\n", place, kKinds[static_cast<std::size_t>(candidates.paths)]);
}

void Replace(std::string& text, std::string_view from, const std::string& to) {
  for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size()) {
    text.replace(at, from.size(), to);
  }
}

}  // namespace

void AddWord(std::string& words, std::string_view word) {
  if (!words.empty()) words += ' ';
  words += word;
}

std::string BashCompletion(const CLI::App& app, CompletionTable table) {
  std::string options;
  AddCommands(app, table, options);
  std::string words;
  std::string paths;
  for (const auto& [command, candidates] : table.arguments) AddPlace(command, candidates, words, paths);
  for (const auto& [name, candidates] : table.values) AddPlace(name, candidates, words, paths);
  std::string script = fmt::format(
      "# bash completion for PROGRAM_NAME\ndeclare -gA _PROG_words=(\n{})\ndeclare -gA _PROG_paths=(\n{})\n"
      "declare -gA _PROG_options=(\n{}){}complete -F _PROG PROGRAM_NAME\n",
      words, paths, options, kFunction);
  Replace(script, "PROGRAM_NAME", app.get_name());
  std::string function = app.get_name();
  std::replace(function.begin(), function.end(), '-', '_');
  Replace(script, "PROG", function);
  return script;
}

}  // namespace rolu
