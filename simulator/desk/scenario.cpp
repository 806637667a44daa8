#include "simulator/desk/scenario.h"

#include <fmt/format.h>

#include <algorithm>
#include <condition_variable>
#include <cstddef>
#include <map>
#include <mutex>
#include <set>
#include <sstream>
#include <utility>

#include "cli/nearest_name.h"
#include "simulator/system/background_thread.h"

namespace rolu_sim {
namespace {

constexpr long kMostRepetitions = 10000;

class ScenarioReader {
 public:
  ScenarioReader(std::string_view text, std::string name) : text_(text), name_(std::move(name)) { Parse(); }

  Scenario Read() {
    if (root_.is_object()) {
      ReadMembers();
    } else {
      Complain(root_, "a scenario is an object with \"events\"");
    }
    if (!complaints_.empty()) throw ScenarioError(complaints_);
    scenario_.Sort();
    return std::move(scenario_);
  }

 private:
  std::string At(std::size_t offset, const std::string& what) const {
    const std::string_view before = text_.substr(0, offset);
    const std::size_t line_start = before.rfind('\n') + 1;  // npos + 1 is 0
    return fmt::format("{}:{}:{}: {}", name_, std::ranges::count(before, '\n') + 1, offset - line_start + 1,
                       what);
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
      const std::size_t start = text_.find_first_not_of(" \t\r\n,:]}", end_of_last);
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
    using std::chrono::milliseconds;
    static const Parameter kAt = Duration("at", "");
    static const Parameter kEvery = Duration("every", "");
    static const Parameter kRepeat = Integer("repeat", 1, kMostRepetitions, "");
    if (!event.is_object()) {
      Complain(event, R"(an event is an object with "at" and "do")");
      return;
    }
    if (!event.contains("at")) Complain(event, "\"at\" is missing: when it happens, from the start");
    const auto at = ReadMember(event, kAt, milliseconds(0));
    const auto every = ReadMember(event, kEvery, milliseconds(0));
    const auto repeat = ReadMember(event, kRepeat, std::int64_t{1});
    if (event.contains("every") != event.contains("repeat")) {
      Complain(event, R"("every" and "repeat" belong together)");
    }
    const Verb* const verb = ReadVerb(event);
    if (verb == nullptr) return;
    const Arguments arguments = CheckArguments(*verb, event, {"do", "at", "every", "repeat"},
                                               [&](const Json* member, const std::string& problem) {
                                                 Complain(member == nullptr ? event : *member, problem);
                                               });
    for (std::int64_t time = 0; time < repeat; ++time) {
      scenario_.events.push_back({at + time * every, {verb, arguments}});
    }
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

  // Null when the event has no known verb.
  const Verb* ReadVerb(const Json& event) {
    if (!event.contains("do") || !event["do"].is_string()) {
      Complain(event, "\"do\" is missing: the verb, as rolu-sim ctl has it");
      return nullptr;
    }
    const std::string name = event["do"].get<std::string>();
    const Verb* const verb = FindVerb(name);
    if (verb == nullptr) Complain(event["do"], UnknownVerb(name));
    return verb;
  }

  const std::string_view text_;
  const std::string name_;
  Json root_;
  std::map<const Json*, std::size_t> starts_;
  Scenario scenario_;
  std::string complaints_;
};

}  // namespace

void Scenario::Sort() {
  std::ranges::stable_sort(events, {}, &Event::at);
}

Scenario ParseScenario(std::string_view text, const std::string& name) {
  return ScenarioReader(text, name).Read();
}

ScenarioPlayer::ScenarioPlayer(Desk& desk, Scenario scenario)
    : desk_(desk), scenario_(std::move(scenario)), start_(std::chrono::steady_clock::now()) {
  const BlockedSignals blocked;
  thread_ = std::jthread([this](const std::stop_token& stop) { Run(stop); });
}

void ScenarioPlayer::Run(const std::stop_token& stop) {
  std::mutex mutex;
  std::condition_variable_any never;
  std::unique_lock<std::mutex> lock(mutex);
  for (const Scenario::Event& event : scenario_.events) {
    never.wait_until(lock, stop, start_ + event.at, [] { return false; });
    if (stop.stop_requested()) return;
    try {
      desk_.Apply(event.action);
    } catch (const std::exception& problem) {
      desk_.Say(
          fmt::format("scenario, {} ms: {}: {}", event.at.count(), event.action.verb->name, problem.what()));
    }
  }
}

}  // namespace rolu_sim
