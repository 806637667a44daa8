#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "simulator/desk/json.h"
#include "simulator/desk/parameter.h"

namespace rolu_sim {

class Desk;
enum class AnswerFaultKind;

// The checked values of a verb's parameters, in the order in which they were given.
class Arguments {
 public:
  void Add(const std::string& name, Argument argument) { all_.emplace_back(name, std::move(argument)); }

  bool Has(std::string_view name) const { return Find(name) != nullptr; }

  // The value of a parameter that was given. `Value` is the type that parameter.h names for it.
  template <typename Value>
  const Value& Get(std::string_view name) const {
    return std::any_cast<const Value&>(Find(name)->value);
  }
  // The same for an Integer, converted to `Value`, which must hold the parameter's range.
  template <typename Value>
  Value Integer(std::string_view name) const {
    return static_cast<Value>(Get<std::int64_t>(name));
  }

  const std::vector<std::pair<std::string, Argument>>& all() const { return all_; }

 private:
  const Argument* Find(std::string_view name) const;

  std::vector<std::pair<std::string, Argument>> all_;
};

// One thing that can be done to a board: by hand, by a scenario or as a fault. `apply` runs with the desk
// locked and returns a remark for the user, usually empty. It throws UsageError when the board's state does
// not allow it.
struct Verb {
  std::string name;
  std::string help;
  std::vector<Parameter> parameters{};
  std::function<std::string(Desk& desk, const Arguments& given)> apply{};
  std::string subject{};  // the heading in the list of verbs
};

// All verbs, in the order of the list.
const std::vector<Verb>& Verbs();
std::vector<Verb> VehicleVerbs();
std::vector<Verb> DeviceVerbs();
std::vector<Verb> FaultVerbs();

// Null when there is no verb of this name.
const Verb* FindVerb(std::string_view name, const std::vector<Verb>& verbs = Verbs());

// The kinds of faults are the names of these verbs without the prefix: "silence" for fault-silence.
inline constexpr std::string_view kFaultPrefix = "fault-";
std::vector<std::string> FaultKinds();
std::string NameOf(AnswerFaultKind kind);

// " (else 30s)" for an optional parameter with a default, otherwise nothing.
std::string FallbackText(const Parameter& parameter);

// A sentence about an unknown verb.
std::string UnknownVerb(std::string_view name, const std::vector<Verb>& verbs = Verbs());

// Reads the values for `verb` from `members`. The members named in `ignored` are skipped. Reports each
// problem to `complain`: with the wrong member, or with null when a member is missing. Without `complain` it
// throws UsageError.
using Complain = std::function<void(const Json* member, const std::string& problem)>;
Arguments CheckArguments(const Verb& verb, const Json& members, const std::vector<std::string>& ignored = {},
                         const Complain& complain = nullptr);

struct Action {
  const Verb* verb = nullptr;
  Arguments arguments;
};

// Reads an action from the words of a command line: values in the order of the parameters, or as name=value.
// If the last parameter may hold blanks, it takes all remaining words. Throws UsageError.
Json MembersFromWords(const Verb& verb, const std::vector<std::string>& words);

// Reads a fault in the form of the command line: "silence:MCVG:times=2" is the verb fault-silence. Throws
// UsageError.
Action ParseFault(const std::string& text);

// The action as words again: "battery-voltage volts=11.2".
std::string Describe(const Action& action);

// The usage, as "VOLTS [TIME]", and the full help in several lines.
std::string Synopsis(const Verb& verb);
std::string FullHelp(const Verb& verb);

}  // namespace rolu_sim
