#include "simulator/scenario/scenario.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "cli/nearest_name.h"
#include "simulator/scenario/positioned_json.h"

namespace rolu_sim {
namespace {

constexpr long kMostRepetitions = 10000;

// The members of an event beside the verb and its parameters.
const std::vector<Parameter>& TimingParameters() {
  static const std::vector<Parameter> parameters = {
      Duration("at", "when it happens, from the start"), Optional(Duration("every", "how often")),
      Optional(Integer("repeat", 1, kMostRepetitions, "how many times"))};
  return parameters;
}

// A member's name may hold what separates names in a pointer.
std::string PointerTo(const std::string& object, const std::string& member) {
  return (Json::json_pointer(object) / member).to_string();
}

class ScenarioReader {
 public:
  ScenarioReader(const PositionedJson& json, std::string name) : json_(json), name_(std::move(name)) {}

  Scenario Read() {
    Scenario scenario;
    const Json& root = json_.value();
    if (!root.is_object()) {
      Complain("", "a scenario is an object with \"events\"");
      throw ScenarioError(complaints_);
    }
    CheckNames(root);
    if (root.contains("description")) ReadDescription(root["description"], scenario);
    if (root.contains("events")) {
      ReadEvents(root["events"], scenario);
    } else {
      Complain("", "\"events\" is missing");
    }
    if (!complaints_.empty()) throw ScenarioError(complaints_);
    std::stable_sort(
        scenario.events.begin(), scenario.events.end(),
        [](const Scenario::Event& one, const Scenario::Event& other) { return one.at < other.at; });
    return scenario;
  }

 private:
  void Complain(const std::string& pointer, const std::string& what) {
    const TextPosition position = json_.PositionOf(pointer);
    if (!complaints_.empty()) complaints_ += '\n';
    complaints_ += fmt::format("{}:{}:{}: {}", name_, position.line, position.column, what);
  }

  void CheckNames(const Json& root) {
    for (const auto& [name, value] : root.items()) {
      if (name == "description" || name == "events") continue;
      Complain(PointerTo("", name), fmt::format("a scenario has no \"{}\"{}", name,
                                                rolu::Suggestion(name, {"description", "events"})));
    }
  }

  void ReadDescription(const Json& value, Scenario& scenario) {
    if (value.is_string()) {
      scenario.description = value.get<std::string>();
    } else {
      Complain("/description", "\"description\" must be a text");
    }
  }

  void ReadEvents(const Json& events, Scenario& scenario) {
    if (!events.is_array()) {
      Complain("/events", "\"events\" must be a list");
      return;
    }
    for (std::size_t index = 0; index < events.size(); ++index) {
      ReadEvent(events[index], fmt::format("/events/{}", index), scenario);
    }
  }

  void ReadEvent(const Json& event, const std::string& pointer, Scenario& scenario) {
    if (!event.is_object()) {
      Complain(pointer, R"(an event is an object with "at" and "do")");
      return;
    }
    const Arguments timing = ReadTiming(event, pointer);
    if (event.contains("every") != event.contains("repeat")) {
      Complain(pointer, R"("every" and "repeat" belong together)");
    }
    const Verb* const verb = ReadVerb(event, pointer);
    if (verb == nullptr) return;
    std::vector<Problem> problems;
    const Arguments arguments = CheckArguments(*verb, event, {"do", "at", "every", "repeat"}, problems);
    for (const Problem& problem : problems) {
      Complain(problem.member.empty() ? pointer : PointerTo(pointer, problem.member), problem.text);
    }
    for (long time = 0; time < timing.Integer("repeat"); ++time) {
      const std::chrono::milliseconds at = timing.Duration("at") + time * timing.Duration("every");
      scenario.events.push_back({at, {verb, arguments}});
    }
  }

  Arguments ReadTiming(const Json& event, const std::string& pointer) {
    Json values = {{"at", "0s"}, {"every", "0s"}, {"repeat", 1}};
    for (const Parameter& parameter : TimingParameters()) {
      if (event.contains(parameter.name)) {
        try {
          values[parameter.name] = parameter.check(event[parameter.name]);
        } catch (const UsageError& problem) {
          Complain(pointer + '/' + parameter.name, problem.what());
        }
      } else if (parameter.required) {
        Complain(pointer, fmt::format("\"{}\" is missing: {}", parameter.name, parameter.help));
      }
    }
    return Arguments(std::move(values));
  }

  const Verb* ReadVerb(const Json& event, const std::string& pointer) {
    if (!event.contains("do") || !event["do"].is_string()) {
      Complain(pointer, "\"do\" is missing: the verb, as rolu-sim ctl has it");
      return nullptr;
    }
    const std::string name = event["do"].get<std::string>();
    const Verb* const verb = FindVerb(name);
    if (verb == nullptr) Complain(pointer + "/do", UnknownVerb(name));
    return verb;
  }

  const PositionedJson& json_;
  const std::string name_;
  std::string complaints_;
};

}  // namespace

Scenario ParseScenario(std::string_view text, const std::string& name) {
  try {
    const PositionedJson json(text);
    return ScenarioReader(json, name).Read();
  } catch (const PositionedError& problem) {
    throw ScenarioError(fmt::format("{}:{}:{}: {}", name, problem.position().line, problem.position().column,
                                    problem.what()));
  }
}

}  // namespace rolu_sim
