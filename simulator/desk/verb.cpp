#include "simulator/desk/verb.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <sstream>

#include "cli/nearest_name.h"

namespace rolu_sim {
namespace {

template <typename Named>
const Named* FindNamed(const std::vector<Named>& all, std::string_view name) {
  const auto found = std::ranges::find(all, name, &Named::name);
  return found == all.end() ? nullptr : &*found;
}

std::string UpperCase(std::string text) {
  std::ranges::transform(text, text.begin(), [](unsigned char letter) { return std::toupper(letter); });
  return text;
}

}  // namespace

const Argument* Arguments::Find(std::string_view name) const {
  const auto found = std::ranges::find(all_, name, &std::pair<std::string, Argument>::first);
  return found == all_.end() ? nullptr : &found->second;
}

const std::vector<Verb>& Verbs() {
  static const std::vector<Verb> verbs = [] {
    std::vector<Verb> all;
    for (auto& [subject, some] : {std::pair("Vehicle and MCU", VehicleVerbs()),
                                  std::pair("Devices", DeviceVerbs()), std::pair("Faults", FaultVerbs())}) {
      for (const Verb& verb : some) all.emplace_back(verb).subject = subject;
    }
    return all;
  }();
  return verbs;
}

const Verb* FindVerb(std::string_view name, const std::vector<Verb>& verbs) {
  return FindNamed(verbs, name);
}

std::vector<std::string> FaultKinds() {
  std::vector<std::string> kinds;
  for (const Verb& verb : Verbs()) {
    if (verb.name.starts_with(kFaultPrefix)) kinds.push_back(verb.name.substr(kFaultPrefix.size()));
  }
  return kinds;
}

std::string FallbackText(const Parameter& parameter) {
  const Json& fallback = parameter.fallback;
  if (fallback.is_null()) return "";
  return fmt::format(" (else {})", fallback.is_string() ? fallback.get<std::string>() : fallback.dump());
}

std::string UnknownVerb(std::string_view name, const std::vector<Verb>& verbs) {
  return fmt::format("there is no verb \"{}\"{}", name, rolu::Suggestion(name, NamesOf(verbs)));
}

Arguments CheckArguments(const Verb& verb, const Json& members, const std::vector<std::string>& ignored,
                         const Complain& complain) {
  const auto refuse = [&](const Json* member, const std::string& problem) {
    if (!complain) throw UsageError(problem);
    complain(member, problem);
  };
  Arguments arguments;
  for (const auto& [name, given] : members.items()) {
    if (std::ranges::find(ignored, name) != ignored.end()) continue;
    const Parameter* const parameter = FindNamed(verb.parameters, name);
    if (parameter == nullptr) {
      refuse(&given, fmt::format("{} has no \"{}\"{}", verb.name, name,
                                 rolu::Suggestion(name, NamesOf(verb.parameters))));
      continue;
    }
    try {
      arguments.Add(name, parameter->Check(given));
    } catch (const UsageError& problem) {
      refuse(&given, problem.what());
    }
  }
  for (const Parameter& parameter : verb.parameters) {
    if (members.contains(parameter.name)) continue;
    if (parameter.required) {
      refuse(nullptr, fmt::format("{} needs \"{}\", {}: {}", verb.name, parameter.name, parameter.help,
                                  parameter.range));
    } else if (!parameter.fallback.is_null()) {
      arguments.Add(parameter.name, parameter.Check(parameter.fallback));
    }
  }
  return arguments;
}

Json MembersFromWords(const Verb& verb, const std::vector<std::string>& words) {
  Json members = Json::object();
  std::size_t next = 0;
  for (const std::string& word : words) {
    const std::size_t equals = word.find('=');
    const std::string name = word.substr(0, equals == std::string::npos ? 0 : equals);
    if (FindNamed(verb.parameters, name) != nullptr) {
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

Action ParseFault(const std::string& text) {
  std::vector<std::string> words;
  std::istringstream stream(text + ':');
  for (std::string word; std::getline(stream, word, ':');) words.push_back(word);
  const std::string& kind = words.front();
  const Verb* const verb = FindVerb(std::string(kFaultPrefix) + kind);
  if (verb == nullptr) {
    throw UsageError(fmt::format("there is no fault \"{}\"{}", kind, rolu::Suggestion(kind, FaultKinds())));
  }
  return {verb, CheckArguments(*verb, MembersFromWords(*verb, {words.begin() + 1, words.end()}))};
}

std::string Describe(const Action& action) {
  std::string text = action.verb->name;
  for (const auto& [name, argument] : action.arguments.all()) {
    text += fmt::format(" {}={}", name, argument.text);
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
