#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <set>
#include <sstream>
#include <utility>

#include "cli/nearest_name.h"
#include "protocol/commands.h"
#include "simulator/desk/scenario.h"

namespace rolu_sim {
namespace {

constexpr long kMostRepetitions = 10000;

// What stands between two items of a JSON text.
constexpr std::string_view kBetweenItems = " \t\r\n,:]}";

class ScenarioReader {
 public:
  ScenarioReader(std::string_view text, std::string name) : text_(text), name_(std::move(name)) { Parse(); }

  Scenario Read() {
    if (root_.is_object()) {
      ReadMembers();
    } else {
      Complain(root_, "a scenario is an object with \"events\"");
    }
    for (const auto& [step, after] : triggers_) ResolveTrigger(step, *after);
    if (complaints_.empty()) FindCircles();
    if (!complaints_.empty()) throw ScenarioError(complaints_);
    return std::move(scenario_);
  }

 private:
  // FILE:LINE of a place in the text.
  std::string LineOf(std::size_t offset) const {
    return fmt::format("{}:{}", name_, std::ranges::count(text_.substr(0, offset), '\n') + 1);
  }

  std::string At(std::size_t offset, const std::string& what) const {
    const std::size_t line_start = text_.substr(0, offset).rfind('\n') + 1;  // npos + 1 is 0
    return fmt::format("{}:{}: {}", LineOf(offset), offset - line_start + 1, what);
  }

  // Reads the text as JSON, and notes where each value begins. Throws ScenarioError when the text is not
  // JSON, or when an object has a member twice.
  void Parse() {
    std::istringstream stream{std::string(text_)};
    std::size_t end_of_last = 0;
    std::vector<std::size_t> starts;          // where each value begins, in their order
    std::vector<std::set<std::string>> keys;  // the members so far of the open objects, by level
    const auto note = [&](int depth, Json::parse_event_t event, const Json& parsed) {
      using Event = Json::parse_event_t;
      // Each item that the parser reports begins behind the previous one. To find the end of a number, the
      // parser has read one character more, which may close the list or the object.
      const std::size_t start = text_.find_first_not_of(kBetweenItems, end_of_last);
      end_of_last = static_cast<std::size_t>(stream.rdbuf()->pubseekoff(0, std::ios::cur, std::ios::in));
      const auto level = static_cast<std::size_t>(depth);
      if (event == Event::key) {
        const auto& name = parsed.get_ref<const std::string&>();
        if (!keys[level].insert(name).second) {
          throw ScenarioError(At(start, fmt::format("\"{}\" is given twice", name)));
        }
      } else if (event != Event::object_end && event != Event::array_end) {
        starts.push_back(start);
        keys.resize(level + 1);
        keys.emplace_back();
      }
      return true;
    };
    try {
      root_ = Json::parse(stream, note);
    } catch (const Json::parse_error& problem) {
      // The parser's message without its error code and line count.
      const std::string message = problem.what();
      const std::size_t offset = std::min(problem.byte == 0 ? 0 : problem.byte - 1, text_.size());
      throw ScenarioError(At(offset, "not JSON: " + message.substr(message.find(": ") + 2)));
    } catch (const Json::out_of_range&) {
      throw ScenarioError(At(text_.find_first_not_of(kBetweenItems, end_of_last), "the number is too large"));
    }
    // The text holds the values in this order: each value before the values in it.
    std::vector<const Json*> rest = {&root_};
    for (const std::size_t start : starts) {
      const Json& value = *rest.back();
      rest.pop_back();
      starts_[&value] = start;
      if (!value.is_structured()) continue;
      for (auto child = value.rbegin(); child != value.rend(); ++child) rest.push_back(&*child);
    }
  }

  // `value` is the wrong value.
  void Complain(const Json& value, const std::string& what) {
    if (!complaints_.empty()) complaints_ += '\n';
    complaints_ += At(starts_.at(&value), what);
  }

  void ReadMembers() {
    for (const auto& [name, value] : root_.items()) {
      if (name == "description" || name == "events") continue;
      Complain(value, fmt::format("a scenario has no \"{}\"{}", name,
                                  rolu::Suggestion(name, {"description", "events"})));
    }
    if (root_.contains("description")) {
      const Json& description = root_["description"];
      if (description.is_string()) {
        scenario_.description = description.get<std::string>();
      } else {
        Complain(description, "\"description\" must be a text");
      }
    }
    if (!root_.contains("events")) {
      Complain(root_, "\"events\" is missing");
    } else if (!root_["events"].is_array()) {
      Complain(root_["events"], "\"events\" must be a list");
    } else {
      for (const Json& event : root_["events"]) ReadEvent(event);
    }
  }

  void ReadEvent(const Json& event) {
    if (!event.is_object()) {
      Complain(event, R"(an event is an object with "at" or "after", and "do" or "expect")");
      return;
    }
    static const Parameter kName = Text("name", "");
    Scenario::Step step;
    step.place = LineOf(starts_.at(&event));
    ReadTime(event, step);
    step.name = ReadMember(event, kName, step.name);
    if (event.contains("do") && event.contains("expect")) {
      Complain(event["expect"], R"(an event has either "do" or "expect")");
    } else if (event.contains("expect")) {
      ReadExpectation(event, step);
    } else {
      ReadAction(event, step);
    }
    if (!step.name.empty()) Name(event["name"], step.name);
    if (event.contains("after") && event["after"].is_string()) {
      triggers_.emplace_back(scenario_.steps.size(), &event["after"]);
    }
    scenario_.steps.push_back(std::move(step));
  }

  void ReadTime(const Json& event, Scenario::Step& step) {
    static const Parameter kAt = Duration("at", "");
    static const Parameter kAfter = Text("after", "");
    static const Parameter kDelay = Duration("delay", "");
    const bool follows = event.contains("after");
    if (follows && event.contains("at")) {
      Complain(event["after"], R"(an event has either "at" or "after")");
    } else if (!follows && !event.contains("at")) {
      Complain(event, R"("at" is missing: when it happens, from the start; or "after": what it follows)");
    } else if (!follows && event.contains("delay")) {
      Complain(event["delay"], R"("delay" belongs to "after")");
    }
    step.delay = ReadMember(event, follows ? kDelay : kAt, step.delay);
    if (follows) step.after.text = ReadMember(event, kAfter, step.after.text);
  }

  void ReadAction(const Json& event, Scenario::Step& step) {
    static const Parameter kEvery = Duration("every", "");
    static const Parameter kRepeat = Integer("repeat", 1, kMostRepetitions, "");
    step.every = ReadMember(event, kEvery, step.every);
    step.repeat = ReadMember(event, kRepeat, step.repeat);
    if (event.contains("every") != event.contains("repeat")) {
      Complain(event, R"("every" and "repeat" belong together)");
    }
    if (event.contains("within")) Complain(event["within"], R"("within" belongs to "expect")");
    step.action.verb = ReadVerb(event, "do", Verbs());
    if (step.action.verb == nullptr) return;
    step.action.arguments = ReadArguments(
        event, *step.action.verb, {"do", "at", "after", "delay", "name", "every", "repeat", "within"});
  }

  void ReadExpectation(const Json& event, Scenario::Step& step) {
    static const Parameter kWithin = Duration("within", "");
    if (!event.contains("within")) Complain(event, "\"within\" is missing: the time for what is expected");
    step.within = ReadMember(event, kWithin, step.within);
    const Verb* const verb = ReadVerb(event, "expect", ExpectationVerbs());
    if (verb == nullptr) return;
    step.expectation.kind = &*std::ranges::find(ExpectationKinds(), verb->name,
                                                [](const ExpectationKind& kind) { return kind.verb.name; });
    step.expectation.arguments =
        ReadArguments(event, *verb, {"expect", "at", "after", "delay", "name", "within"});
  }

  Arguments ReadArguments(const Json& event, const Verb& verb,
                          const std::vector<std::string>& other_members) {
    return CheckArguments(verb, event, other_members, [&](const Json* member, const std::string& problem) {
      Complain(member == nullptr ? event : *member, problem);
    });
  }

  // Notes the name of the step that comes next.
  void Name(const Json& given, const std::string& name) {
    if (IsBoardEvent(name)) {
      Complain(given, fmt::format("\"{}\" is an event of the board; give the step another name", name));
    } else if (const auto* const command = rolu_protocol::FindCommand(name); command != nullptr) {
      Complain(given, fmt::format("\"{}\" begins as the command {} of the MCU; give the step another name",
                                  name, command->code));
    } else if (!named_steps_.emplace(name, scenario_.steps.size()).second) {
      Complain(given, fmt::format("another step is named \"{}\" already", name));
    }
  }

  void ResolveTrigger(std::size_t step, const Json& given) {
    Scenario::Trigger& after = scenario_.steps[step].after;
    if (const auto named = named_steps_.find(after.text); named != named_steps_.end()) {
      after.kind = Scenario::Trigger::Kind::kStep;
      after.step = named->second;
    } else if (IsBoardEvent(after.text)) {
      after.kind = Scenario::Trigger::Kind::kEvent;
    } else if (rolu_protocol::FindCommand(after.text) != nullptr) {
      after.kind = Scenario::Trigger::Kind::kCommand;
    } else {
      std::vector<std::string> known = BoardEventNames();
      for (const auto& [name, number] : named_steps_) known.push_back(name);
      known.insert(known.end(), CommandCodes().begin(), CommandCodes().end());
      Complain(given,
               fmt::format(R"("after": "{}" is no step's name, no event of the board and no command{})",
                           after.text, rolu::Suggestion(after.text, known)));
    }
  }

  // A step that waits for itself, over others, never begins.
  void FindCircles() {
    for (const auto& [first, given] : triggers_) {
      std::size_t step = first;
      for (std::size_t count = 0; count < scenario_.steps.size(); ++count) {
        const Scenario::Trigger& after = scenario_.steps[step].after;
        if (after.kind != Scenario::Trigger::Kind::kStep) break;
        step = after.step;
        if (step != first) continue;
        Complain(*given, fmt::format("\"{}\" waits for this step, so this step never begins",
                                     scenario_.steps[first].after.text));
        return;
      }
    }
  }

  static bool IsBoardEvent(const std::string& name) {
    return std::ranges::find(BoardEventNames(), name) != BoardEventNames().end();
  }

  template <typename Value>
  Value ReadMember(const Json& event, const Parameter& parameter, Value otherwise) {
    if (!event.contains(parameter.name)) return otherwise;
    const Json& given = event[parameter.name];
    try {
      return std::any_cast<Value>(parameter.Check(given).value);
    } catch (const UsageError& problem) {
      Complain(given, problem.what());
      return otherwise;
    }
  }

  // Null when `member` of the event is not a known one of `verbs`.
  const Verb* ReadVerb(const Json& event, const char* member, const std::vector<Verb>& verbs) {
    if (!event.contains(member)) {
      Complain(event, R"("do" is missing: the verb, as rolu-sim ctl has it; or "expect")");
      return nullptr;
    }
    if (!event[member].is_string()) {
      Complain(event[member], fmt::format("\"{}\" must be a text", member));
      return nullptr;
    }
    const std::string name = event[member].get<std::string>();
    const Verb* const verb = FindVerb(name, verbs);
    if (verb != nullptr) return verb;
    Complain(event[member], &verbs == &Verbs() ? UnknownVerb(name)
                                               : fmt::format("\"{}\" cannot be expected{}", name,
                                                             rolu::Suggestion(name, NamesOf(verbs))));
    return nullptr;
  }

  const std::string_view text_;
  const std::string name_;
  Json root_;
  std::map<const Json*, std::size_t> starts_;
  Scenario scenario_;
  std::map<std::string, std::size_t> named_steps_;
  std::vector<std::pair<std::size_t, const Json*>> triggers_;  // steps, and what they follow
  std::string complaints_;
};

}  // namespace

Scenario ParseScenario(std::string_view text, const std::string& name) {
  return ScenarioReader(text, name).Read();
}

void CheckForServedBoard(const Scenario& scenario) {
  for (const Scenario::Step& step : scenario.steps) {
    if (step.IsExpectation() && step.expectation.kind->is_of_program) {
      throw ScenarioError(
          fmt::format("{}: \"{}\" is for rolu-sim run: a served board has no program of its own", step.place,
                      step.expectation.kind->verb.name));
    }
  }
}

}  // namespace rolu_sim
