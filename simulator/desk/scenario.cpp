#include "simulator/desk/scenario.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <map>
#include <set>
#include <stdexcept>
#include <utility>

#include "cli/nearest_name.h"
#include "simulator/blocked_signals.h"

namespace rolu_sim {
namespace {

// Both count from 1.
struct TextPosition {
  std::size_t line = 1;
  std::size_t column = 1;
};

struct PositionedError : std::runtime_error {
  PositionedError(TextPosition where, const std::string& problem)
      : std::runtime_error(problem), position(where) {}

  TextPosition position;
};

// A JSON text that knows where each of its values stands.
class PositionedJson {
 public:
  // Throws PositionedError for a text that is no JSON, or that gives a member twice.
  explicit PositionedJson(std::string_view text);
  PositionedJson(const PositionedJson&) = delete;
  PositionedJson& operator=(const PositionedJson&) = delete;

  const Json& value() const { return value_; }

  // Where a value of this text begins.
  TextPosition PositionOf(const Json& value) const { return positions_.at(&value); }

 private:
  Json value_;
  std::map<const Json*, TextPosition> positions_;
};

TextPosition PositionAt(std::string_view text, std::size_t offset) {
  const std::string_view before = text.substr(0, offset);
  const auto newlines = std::count(before.begin(), before.end(), '\n');
  const std::size_t line_start = before.rfind('\n') + 1;  // npos + 1 is 0
  return {static_cast<std::size_t>(newlines) + 1, offset - line_start + 1};
}

// Walks over a text and tells how far the parser has read it.
struct ReadingIterator {
  using iterator_category = std::input_iterator_tag;
  using value_type = char;
  using difference_type = std::ptrdiff_t;
  using pointer = const char*;
  using reference = const char&;

  const char* at;
  const char** furthest;

  reference operator*() const { return *at; }
  ReadingIterator& operator++() {
    *furthest = ++at;
    return *this;
  }
  bool operator==(const ReadingIterator& other) const { return at == other.at; }
};

// The parser's message without its code and its own count of lines.
std::string Complaint(const std::string& message) {
  const std::size_t colon = message.find(": ");
  return "no JSON: " + (colon == std::string::npos ? message : message.substr(colon + 2));
}

PositionedJson::PositionedJson(std::string_view text) {
  const char* furthest = text.data();
  std::size_t end_of_last = 0;
  std::vector<std::size_t> starts;          // of the values, in their order
  std::vector<std::set<std::string>> keys;  // by level, of the objects around the place that is read
  const auto note = [&](int depth, Json::parse_event_t event, const Json& parsed) {
    // What the parser tells of begins behind the last that it told of. Behind a number it has read one
    // character more, which may be the end of the list or the object.
    const std::size_t start = text.find_first_not_of(" \t\r\n,:]}", end_of_last);
    end_of_last = static_cast<std::size_t>(furthest - text.data());
    if (event == Json::parse_event_t::object_end || event == Json::parse_event_t::array_end) return true;
    const auto level = static_cast<std::size_t>(depth);
    if (event == Json::parse_event_t::object_start) {
      keys.resize(level + 1);
      keys.emplace_back();
    }
    if (event != Json::parse_event_t::key) {
      starts.push_back(start);
    } else if (const auto& name = parsed.get_ref<const std::string&>(); !keys[level].insert(name).second) {
      throw PositionedError(PositionAt(text, start), fmt::format("\"{}\" is given twice", name));
    }
    return true;
  };
  const char* const end = text.data() + text.size();
  try {
    value_ = Json::parse(ReadingIterator{text.data(), &furthest}, ReadingIterator{end, &furthest}, note);
  } catch (const Json::parse_error& problem) {
    const std::size_t offset = std::min(problem.byte == 0 ? 0 : problem.byte - 1, text.size());
    throw PositionedError(PositionAt(text, offset), Complaint(problem.what()));
  }
  // The values stand in the text in this order: each before those in it.
  std::vector<const Json*> rest = {&value_};
  for (const std::size_t start : starts) {
    const Json& value = *rest.back();
    rest.pop_back();
    positions_[&value] = PositionAt(text, start);
    if (!value.is_structured()) continue;
    for (auto child = value.rbegin(); child != value.rend(); ++child) rest.push_back(&*child);
  }
}

constexpr long kMostRepetitions = 10000;

class ScenarioReader {
 public:
  ScenarioReader(std::string_view text, std::string name) : json_(text), name_(std::move(name)) {}

  Scenario Read() {
    const Json& root = json_.value();
    if (root.is_object()) {
      ReadMembers(root);
    } else {
      Complain(root, "a scenario is an object with \"events\"");
    }
    if (!complaints_.empty()) throw ScenarioError(complaints_);
    scenario_.Sort();
    return std::move(scenario_);
  }

 private:
  // `value` is the one that is wrong.
  void Complain(const Json& value, const std::string& what) {
    const TextPosition position = json_.PositionOf(value);
    if (!complaints_.empty()) complaints_ += '\n';
    complaints_ += fmt::format("{}:{}:{}: {}", name_, position.line, position.column, what);
  }

  void ReadMembers(const Json& root) {
    for (const auto& [name, value] : root.items()) {
      if (name == "description" || name == "events") continue;
      Complain(value, fmt::format("a scenario has no \"{}\"{}", name,
                                  rolu::Suggestion(name, {"description", "events"})));
    }
    if (root.contains("description")) {
      const Json& description = root["description"];
      if (description.is_string()) {
        scenario_.description = description.get<std::string>();
      } else {
        Complain(description, "\"description\" must be a text");
      }
    }
    if (!root.contains("events")) {
      Complain(root, "\"events\" is missing");
    } else if (!root["events"].is_array()) {
      Complain(root["events"], "\"events\" must be a list");
    } else {
      for (const Json& event : root["events"]) ReadEvent(event);
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
    std::vector<Problem> problems;
    const Arguments arguments = CheckArguments(*verb, event, {"do", "at", "every", "repeat"}, problems);
    for (const auto& [member, text] : problems) Complain(member.empty() ? event : event[member], text);
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

  // Null when there is none.
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

  const PositionedJson json_;
  const std::string name_;
  Scenario scenario_;
  std::string complaints_;
};

}  // namespace

void Scenario::Sort() {
  std::ranges::stable_sort(events, {}, &Event::at);
}

Scenario ParseScenario(std::string_view text, const std::string& name) {
  try {
    return ScenarioReader(text, name).Read();
  } catch (const PositionedError& problem) {
    throw ScenarioError(
        fmt::format("{}:{}:{}: {}", name, problem.position.line, problem.position.column, problem.what()));
  }
}

ScenarioPlayer::ScenarioPlayer(Desk& desk, Scenario scenario)
    : desk_(desk), scenario_(std::move(scenario)), start_(std::chrono::steady_clock::now()) {
  const BlockedSignals blocked;
  thread_ = std::thread([this] { Run(); });
}

ScenarioPlayer::~ScenarioPlayer() {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    stopping_ = true;
  }
  stopped_.notify_all();
  thread_.join();
}

void ScenarioPlayer::Run() {
  for (const Scenario::Event& event : scenario_.events) {
    {
      std::unique_lock<std::mutex> lock(mutex_);
      if (stopped_.wait_until(lock, start_ + event.at, [this] { return stopping_; })) return;
    }
    try {
      desk_.Apply(event.action);
    } catch (const std::exception& problem) {
      desk_.Say(
          fmt::format("scenario, {} ms: {}: {}", event.at.count(), event.action.verb->name, problem.what()));
    }
  }
}

}  // namespace rolu_sim
