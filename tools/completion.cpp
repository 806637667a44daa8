#include <fmt/format.h>

#include "tools/documentation.h"
#include "tools/settings_table.h"
#include "tools/watch_events.h"

namespace rolu {
namespace {

// Finds the innermost command, then offers what that command takes. In bash '=' is a word of its own, but for
// users who have taken it out of COMP_WORDBREAKS.
constexpr char kFunction[] = R"(_rolu() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD-1]}
  local command=rolu word words
  for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
    [[ $word != -* && -n ${_rolu_words[$command $word]+known} ]] && command+=" $word"
  done
  COMPREPLY=()
  if [[ $command == 'rolu set' && ( $current == *=* || $previous == '=' ) ]]; then
    local name=$previous value=${current#=} before=
    [[ $previous == '=' ]] && name=${COMP_WORDS[COMP_CWORD-2]}
    [[ $current == ?*=* ]] && name=${current%%=*} value=${current#*=} before=${current%%=*}=
    mapfile -t COMPREPLY < <(compgen -P "$before" -W "${_rolu_values[$name]}" -- "$value")
    return
  fi
  if [[ $previous == --on ]]; then
    mapfile -t COMPREPLY < <(compgen -W "$_rolu_events" -- "$current")
    return
  fi
  words=${_rolu_words[$command]}
  if [[ $current == -* ]]; then
    words=${_rolu_options[rolu]}
    [[ $command != rolu ]] && words+=" ${_rolu_options[$command]}"
  fi
  mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
  [[ ${#COMPREPLY[@]} -eq 1 && ${COMPREPLY[0]} == *= ]] && compopt -o nospace 2>/dev/null
  if [[ ${_rolu_files[$command]+takes} && $current != -* ]]; then
    mapfile -t -O "${#COMPREPLY[@]}" COMPREPLY < <(compgen -f -- "$current")
    compopt -o filenames 2>/dev/null
  fi
}
complete -F _rolu rolu
)";

void AddWord(std::string& list, const std::string& word) {
  list += (list.empty() ? "" : " ") + word;
}

bool HasPositional(const CLI::App& app, const char* name) {
  for (const CLI::Option* const option : app.get_options()) {
    if (option->get_positional() && option->get_name(true) == name) return true;
  }
  return false;
}

std::string OptionWords(const CLI::App& app) {
  std::string words;
  for (const CLI::Option* const option : app.get_options()) {
    const bool is_repeated = option == app.get_help_ptr() && app.get_parent() != nullptr;
    if (option->get_group().empty() || is_repeated) continue;
    for (const std::string& name : option->get_lnames()) AddWord(words, "--" + name);
    for (const std::string& name : option->get_snames()) AddWord(words, "-" + name);
  }
  return words;
}

// Subcommands, or names of settings.
std::string ArgumentWords(const CLI::App& app) {
  std::string words;
  for (const CLI::App* const command : ShownSubcommands(app)) AddWord(words, command->get_name());
  if (HasPositional(app, "NAME")) {
    for (const SettingGroup& group : SettingGroups()) AddWord(words, std::string(group.name));
    for (const Setting& setting : Settings()) AddWord(words, std::string(setting.name));
  }
  if (HasPositional(app, "NAME=VALUE")) {
    for (const Setting& setting : Settings()) {
      if (setting.IsWritable()) AddWord(words, fmt::format("{}=", setting.name));
    }
  }
  return words;
}

void AddCommand(const CLI::App& app, const std::string& path, std::string& script) {
  script += fmt::format("_rolu_words['{}']='{}'\n", path, ArgumentWords(app));
  script += fmt::format("_rolu_options['{}']='{}'\n", path, OptionWords(app));
  if (HasPositional(app, "FILE")) script += fmt::format("_rolu_files['{}']=1\n", path);
  for (const CLI::App* const command : ShownSubcommands(app)) {
    AddCommand(*command, path + " " + command->get_name(), script);
  }
}

void AddValues(std::string& script) {
  for (const Setting& setting : Settings()) {
    if (!setting.IsWritable()) continue;
    std::string values = setting.kind == Kind::kFlag ? "on off" : "";
    for (const std::string_view choice : setting.choices) AddWord(values, std::string(choice));
    if (!values.empty()) script += fmt::format("_rolu_values['{}']='{}'\n", setting.name, values);
  }
}

}  // namespace

std::string BashCompletion(const CLI::App& app) {
  std::string script =
      "# bash completion for rolu\ndeclare -gA _rolu_words _rolu_options _rolu_files _rolu_values\n";
  AddCommand(app, app.get_name(), script);
  AddValues(script);
  std::string events;
  for (const EventName& event : EventNames()) AddWord(events, std::string(event.name));
  script += fmt::format("_rolu_events='{}'\n", events);
  return script + kFunction;
}

}  // namespace rolu
