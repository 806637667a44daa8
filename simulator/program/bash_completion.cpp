#include <fmt/format.h>

#include "simulator/control/readings.h"
#include "simulator/program/control_words.h"
#include "simulator/program/help_text.h"
#include "simulator/program/manual.h"
#include "simulator/scenario/scenario_files.h"

namespace rolu_sim {
namespace {

// What can follow a verb: the choices of its first value, and the names of all.
std::string ValuesOf(const Verb& verb) {
  std::string values;
  if (!verb.parameters.empty()) values = fmt::format("{}", fmt::join(verb.parameters.front().choices, " "));
  for (const Parameter& parameter : verb.parameters) values += fmt::format(" {}=", parameter.name);
  return values;
}

// Those of the values that are named as "name=", by verb and name.
std::string ChoicesOf(const Verb& verb) {
  std::string choices;
  for (const Parameter& parameter : verb.parameters) {
    if (parameter.choices.empty()) continue;
    choices +=
        fmt::format("  ['{} {}']='{}'\n", verb.name, parameter.name, fmt::join(parameter.choices, " "));
  }
  return choices;
}

std::string OptionsOf(const CLI::App& app) {
  return fmt::format("{}", fmt::join(LongOptions(app), " "));
}

template <typename Named>
std::string NamesOf(const std::vector<Named>& all) {
  std::vector<std::string> names;
  for (const Named& one : all) names.push_back(one.name);
  return fmt::format("{}", fmt::join(names, " "));
}

std::string FaultKinds() {
  constexpr std::string_view kPrefix = "fault-";
  std::vector<std::string> kinds;
  for (const Verb& verb : FaultVerbs()) {
    if (verb.name.compare(0, kPrefix.size(), kPrefix) == 0) kinds.push_back(verb.name.substr(kPrefix.size()));
  }
  return fmt::format("{}", fmt::join(kinds, " "));
}

constexpr char kHead[] = R"(# bash completion for rolu-sim; written by `rolu-sim completion`

_rolu_sim_words() { mapfile -t COMPREPLY < <(compgen -W "$1" -- "$2"); }

# Files, or directories with -d; a directory is gone on from.
_rolu_sim_paths() {
  mapfile -t COMPREPLY < <(compgen "$1" -- "$2")
  compopt -o filenames 2>/dev/null
}

)";

constexpr char kBody[] = R"(
# What can follow name=, for a verb; false where no name= is before the cursor. '=' is a word of its own,
# but for users who have taken it out of COMP_WORDBREAKS.
_rolu_sim_named_value() {
  local verb=$1 current=$2 previous=$3 name= value=$2 before=
  if [[ $current == *?=* ]]; then
    name=${current%%=*} value=${current#*=} before=$name=
  elif [[ $current == '=' ]]; then
    name=$previous value=
  elif [[ $previous == '=' ]]; then
    name=${COMP_WORDS[COMP_CWORD - 2]}
  fi
  [[ -n $verb && -n $name ]] || return
  mapfile -t COMPREPLY < <(compgen -P "$before" -W "${_rolu_sim_choices[$verb $name]-}" -- "$value")
}

_rolu_sim() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} at word=
  COMPREPLY=()
  if ((COMP_CWORD == 1)); then
    _rolu_sim_words "$_rolu_sim_subcommands ${_rolu_sim_options[run]}" "$current"
    return
  fi
  local subcommand=${COMP_WORDS[1]}
  [[ " $_rolu_sim_subcommands " == *" $subcommand "* ]] || subcommand=run
  for ((at = 1; at < COMP_CWORD; ++at)); do
    if [[ ${COMP_WORDS[at]} == -- ]] && declare -F _command_offset >/dev/null; then
      _command_offset $((at + 1))
      return
    fi
    [[ -z $word && -n ${COMP_WORDS[at]} && ${COMP_WORDS[at - 1]} != --board ]] || continue
    [[ -n ${_rolu_sim_values[${COMP_WORDS[at]}]+known} ]] && word=${COMP_WORDS[at]}
  done
  [[ $subcommand == ctl ]] && _rolu_sim_named_value "$word" "$current" "$previous" && return
  case $previous in
    --scenario | --show | play)
      mapfile -t COMPREPLY < <(compgen -W "$_rolu_sim_scenarios" -- "$current"; compgen -f -- "$current")
      ;;
    --fault) _rolu_sim_words "$_rolu_sim_faults" "$current" ;;
    --mode) _rolu_sim_words "12 24" "$current" ;;
    --trace-format) _rolu_sim_words "json text" "$current" ;;
    --board | serve | join) _rolu_sim_paths -d "$current" ;;
    --replay | --trace | --check) _rolu_sim_paths -f "$current" ;;
    *)
      if [[ $subcommand != ctl || $current == -* ]]; then
        _rolu_sim_words "${_rolu_sim_options[$subcommand]}" "$current"
      elif [[ -z $word ]]; then
        _rolu_sim_words "${!_rolu_sim_values[*]}" "$current"
      else
        _rolu_sim_words "${_rolu_sim_values[$word]}" "$current"
      fi
      ;;
  esac
  [[ ${COMPREPLY[*]-} == *= ]] && compopt -o nospace 2>/dev/null
  return 0
}
complete -F _rolu_sim rolu-sim
)";

}  // namespace

std::string BashCompletion(const CLI::App& app) {
  std::string text = kHead;
  std::string subcommands;
  text += "declare -gA _rolu_sim_options=(\n";
  for (const CLI::App* const subcommand : app.get_subcommands({})) {
    if (subcommand->get_group().empty()) continue;
    subcommands += (subcommands.empty() ? "" : " ") + subcommand->get_name();
    text += fmt::format("  [{}]='{}'\n", subcommand->get_name(), OptionsOf(*subcommand));
  }
  text += ")\ndeclare -gA _rolu_sim_values=(\n";
  for (const Verb& word : ControlWords()) text += fmt::format("  [{}]='{}'\n", word.name, ValuesOf(word));
  for (const Verb& verb : Verbs()) text += fmt::format("  [{}]='{}'\n", verb.name, ValuesOf(verb));
  text += ")\ndeclare -gA _rolu_sim_choices=(\n";
  for (const auto* const some : {&ControlWords(), &Verbs()}) {
    for (const Verb& verb : *some) text += ChoicesOf(verb);
  }
  text += fmt::format(")\n_rolu_sim_subcommands='{}'\n", subcommands);
  text += fmt::format("_rolu_sim_faults='{}'\n", FaultKinds());
  text += fmt::format("_rolu_sim_scenarios='{}'\n", fmt::join(ReadyScenarioNames(), " "));
  return text + kBody;
}

}  // namespace rolu_sim
