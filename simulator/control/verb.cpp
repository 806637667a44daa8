#include "simulator/control/verb.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstddef>
#include <utility>

#include "cli/duration.h"
#include "cli/nearest_name.h"

namespace rolu_sim {
namespace {

std::vector<std::string> NamesOf(const std::vector<Parameter>& parameters) {
  std::vector<std::string> names;
  names.reserve(parameters.size());
  for (const Parameter& parameter : parameters) names.push_back(parameter.name);
  return names;
}

const Parameter* FindParameter(const Verb& verb, std::string_view name) {
  const auto found = std::find_if(verb.parameters.begin(), verb.parameters.end(),
                                  [&](const Parameter& parameter) { return parameter.name == name; });
  return found == verb.parameters.end() ? nullptr : &*found;
}

std::string UpperCase(std::string text) {
  for (char& character : text) {
    character = static_cast<char>(std::toupper(static_cast<unsigned char>(character)));
  }
  return text;
}

}  // namespace

std::string Arguments::Bytes(const char* name) const {
  const std::string digits = Text(name);
  std::string bytes;
  for (std::size_t at = 0; at + 2 <= digits.size(); at += 2) {
    unsigned value = 0;
    std::from_chars(digits.data() + at, digits.data() + at + 2, value, 16);
    bytes += static_cast<char>(value);
  }
  return bytes;
}

std::chrono::milliseconds Arguments::Duration(const char* name) const {
  return rolu::ParseDuration(Text(name)).value_or(std::chrono::milliseconds(0));
}

const std::vector<Verb>& Verbs() {
  static const std::vector<Verb> verbs = [] {
    std::vector<Verb> all;
    for (const auto subject : {VehicleVerbs, DeviceVerbs, FaultVerbs}) {
      std::vector<Verb> some = subject();
      std::move(some.begin(), some.end(), std::back_inserter(all));
    }
    return all;
  }();
  return verbs;
}

const Verb* FindVerb(std::string_view name) {
  const auto found =
      std::find_if(Verbs().begin(), Verbs().end(), [&](const Verb& verb) { return verb.name == name; });
  return found == Verbs().end() ? nullptr : &*found;
}

std::vector<std::string> FaultKinds() {
  constexpr std::string_view kPrefix = "fault-";
  std::vector<std::string> kinds;
  for (const Verb& verb : FaultVerbs()) {
    if (verb.name.starts_with(kPrefix)) kinds.push_back(verb.name.substr(kPrefix.size()));
  }
  return kinds;
}

std::string FallbackText(const Parameter& parameter) {
  const Json& fallback = parameter.fallback;
  if (fallback.is_null()) return "";
  return fmt::format(" (else {})", fallback.is_string() ? fallback.get<std::string>() : fallback.dump());
}

std::string UnknownVerb(std::string_view name) {
  std::vector<std::string> names;
  for (const Verb& verb : Verbs()) names.push_back(verb.name);
  return fmt::format("there is no verb \"{}\"{}", name, rolu::Suggestion(name, names));
}

Arguments CheckArguments(const Verb& verb, const Json& members, const std::vector<std::string>& ignored,
                         std::vector<Problem>& problems) {
  Json values = Json::object();
  for (const auto& [name, given] : members.items()) {
    if (std::find(ignored.begin(), ignored.end(), name) != ignored.end()) continue;
    const Parameter* const parameter = FindParameter(verb, name);
    if (parameter == nullptr) {
      problems.push_back({name, fmt::format("{} has no \"{}\"{}", verb.name, name,
                                            rolu::Suggestion(name, NamesOf(verb.parameters)))});
      continue;
    }
    try {
      values[name] = parameter->check(given);
    } catch (const UsageError& problem) {
      problems.push_back({name, problem.what()});
    }
  }
  for (const Parameter& parameter : verb.parameters) {
    if (members.contains(parameter.name)) continue;
    if (parameter.required) {
      problems.push_back({"", fmt::format("{} needs \"{}\", {}: {}", verb.name, parameter.name,
                                          parameter.help, parameter.range)});
    } else if (!parameter.fallback.is_null()) {
      values[parameter.name] = parameter.check(parameter.fallback);
    }
  }
  return Arguments(std::move(values));
}

Json MembersFromWords(const Verb& verb, const std::vector<std::string>& words) {
  Json members = Json::object();
  std::size_t next = 0;
  for (const std::string& word : words) {
    const std::size_t equals = word.find('=');
    const std::string name = word.substr(0, equals == std::string::npos ? 0 : equals);
    if (FindParameter(verb, name) != nullptr) {
      if (members.contains(name)) throw UsageError(fmt::format("\"{}\" is given twice", name));
      members[name] = word.substr(equals + 1);
      continue;
    }
    if (next == verb.parameters.size()) {
      throw UsageError(fmt::format("{} takes no \"{}\"; usage: {}", verb.name, word, Synopsis(verb)));
    }
    const Parameter& parameter = verb.parameters[next];
    if (!members.contains(parameter.name)) {
      members[parameter.name] = word;
    } else {
      members[parameter.name] = members[parameter.name].get<std::string>() + ' ' + word;
    }
    const bool is_last = next + 1 == verb.parameters.size();
    if (!is_last || !parameter.takes_rest) ++next;
  }
  return members;
}

Action ParseAction(const std::vector<std::string>& words) {
  if (words.empty()) throw UsageError("a verb is missing");
  const Verb* const verb = FindVerb(words.front());
  if (verb == nullptr) throw UsageError(UnknownVerb(words.front()));
  std::vector<Problem> problems;
  Arguments arguments =
      CheckArguments(*verb, MembersFromWords(*verb, {words.begin() + 1, words.end()}), {}, problems);
  if (!problems.empty()) throw UsageError(problems.front().text);
  return {verb, std::move(arguments)};
}

Action ParseFault(std::string_view text) {
  std::vector<std::string> words;
  std::string_view rest = text;
  while (true) {
    const std::size_t colon = rest.find(':');
    words.emplace_back(rest.substr(0, colon));
    if (colon == std::string_view::npos) break;
    rest.remove_prefix(colon + 1);
  }
  const std::string kind = words.front();
  words.front() = "fault-" + kind;
  if (FindVerb(words.front()) == nullptr) {
    throw UsageError(fmt::format("there is no fault \"{}\"{}", kind, rolu::Suggestion(kind, FaultKinds())));
  }
  return ParseAction(words);
}

std::string Describe(const Action& action) {
  std::string text = action.verb->name;
  for (const auto& [name, value] : action.arguments.values().items()) {
    text += fmt::format(" {}={}", name, value.is_string() ? value.get<std::string>() : value.dump());
  }
  return text;
}

std::string Synopsis(const Verb& verb) {
  std::string text = verb.name;
  for (const Parameter& parameter : verb.parameters) {
    const std::string name = UpperCase(parameter.name);
    text += parameter.required ? ' ' + name : " [" + name + ']';
  }
  return text;
}

std::string FullHelp(const Verb& verb) {
  std::string text = fmt::format("{}\n\n{}.\n", Synopsis(verb), verb.help);
  for (const Parameter& parameter : verb.parameters) {
    text += fmt::format("\n  {:<14}{}: {}{}", UpperCase(parameter.name), parameter.help, parameter.range,
                        FallbackText(parameter));
  }
  text += verb.parameters.empty() ? "" : "\n\nA value may also be given by its name, as name=value.\n";
  return text;
}

}  // namespace rolu_sim
