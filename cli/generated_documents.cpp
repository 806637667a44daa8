#include "cli/generated_documents.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>

#include "cli/command_line.h"
#include "cli/exit_status.h"

namespace rolu {
namespace {

// Every command has --help; the page shows it once.
bool IsShown(const CLI::App& app, const CLI::Option& option) {
  const bool is_repeated = &option == app.get_help_ptr() && app.get_parent() != nullptr;
  return !option.get_group().empty() && !is_repeated;
}

// "-n, --value-only", or "--for DURATION".
std::string OptionTerm(const CLI::Option& option) {
  if (option.get_positional()) return option.get_name(true);
  std::string term;
  for (const std::string& name : option.get_snames()) term += (term.empty() ? "-" : ", -") + name;
  for (const std::string& name : option.get_lnames()) term += (term.empty() ? "--" : ", --") + name;
  return option.get_expected_max() > 0 ? term + " " + option.get_type_name() : term;
}

std::string Options(const CLI::App& app) {
  std::string text;
  for (const CLI::Option* const option : app.get_options()) {
    if (IsShown(app, *option)) text += RoffItem(OptionTerm(*option), RoffText(option->get_description()));
  }
  return text;
}

std::string Commands(const CLI::App& app, std::string (*usage)(const CLI::App&)) {
  std::string text;
  for (const CLI::App* const command : ShownSubcommands(app)) {
    text += fmt::format(".SS {}\n{}.\n{}", RoffText(usage(*command)), RoffText(command->get_description()),
                        Options(*command));
    if (!command->get_footer().empty()) {
      text += fmt::format(".PP\n.nf\n{}\n.fi\n", RoffText(command->get_footer()));
    }
    text += Commands(*command, usage);
  }
  return text;
}

std::string ExitStatuses() {
  std::string text;
  for (const ExitStatusText& status : kExitStatusTexts) {
    text += RoffItem(status.number, RoffText(status.meaning));
  }
  return text;
}

// The function finds the innermost command, then offers what that command takes. In bash '=' is a word of its
// own, unless the user has taken it out of COMP_WORDBREAKS.
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

}  // namespace

std::string RoffText(std::string_view text) {
  std::string escaped;
  bool is_line_start = true;
  for (const char character : text) {
    if (is_line_start && (character == '.' || character == '\'')) escaped += "\\&";
    if (character == '\\') {
      escaped += "\\e";
    } else if (character == '-') {
      escaped += "\\-";
    } else {
      escaped += character;
    }
    is_line_start = character == '\n';
  }
  return escaped;
}

std::string RoffItem(std::string_view term, std::string_view body) {
  return fmt::format(".TP\n\\fB{}\\fR\n{}\n", RoffText(term), body);
}

std::string ManPage(const CLI::App& app, std::string_view version, std::string_view purpose,
                    std::string (*usage)(const CLI::App&)) {
  std::string title = app.get_name();
  std::transform(title.begin(), title.end(), title.begin(), [](unsigned char c) { return std::toupper(c); });
  return fmt::format(
      ".TH {} 1 \"\" \"kavo_rolu {}\" \"User Commands\"\n"
      ".SH NAME\n{} \\- {}\n"
      ".SH SYNOPSIS\n\\fB{}\\fR\n"
      ".SH DESCRIPTION\n{}\n"
      ".SH OPTIONS\n{}"
      ".SH COMMANDS\n{}"
      ".SH EXIT STATUS\n{}",
      RoffText(title), version, RoffText(app.get_name()), RoffText(purpose), RoffText(usage(app)),
      RoffText(app.get_description()), Options(app), Commands(app, usage), ExitStatuses());
}

void AddWord(std::string& words, std::string_view word) {
  if (!words.empty()) words += ' ';
  words += word;
}

std::string BashCompletion(const CLI::App& app, CompletionTable table) {
  std::string options;
  AddCommands(app, table, options);
  std::string words;
  std::string paths;
  for (const auto* const places : {&table.arguments, &table.values}) {
    for (const auto& [place, candidates] : *places) {
      constexpr const char* kKinds[] = {"", "file", "directory", "program"};
      words += fmt::format("  ['{}']='{}'\n", place, candidates.words);
      const char* const kind = kKinds[static_cast<std::size_t>(candidates.paths)];
      if (*kind != '\0') paths += fmt::format("  ['{}']={}\n", place, kind);
    }
  }
  std::string script = fmt::format(
      "# bash completion for PROGRAM_NAME\ndeclare -gA _PROG_words=(\n{})\ndeclare -gA _PROG_paths=(\n{})\n"
      "declare -gA _PROG_options=(\n{}){}complete -F _PROG PROGRAM_NAME\n",
      words, paths, options, kFunction);
  using CLI::detail::find_and_replace;
  script = find_and_replace(std::move(script), "PROGRAM_NAME", app.get_name());
  return find_and_replace(std::move(script), "PROG", find_and_replace(app.get_name(), "-", "_"));
}

}  // namespace rolu
