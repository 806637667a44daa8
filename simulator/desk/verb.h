#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <type_traits>
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

  // The value of a parameter, which must be there; its type is the one that parameter.h says.
  template <typename Value>
  const Value& Get(std::string_view name) const {
    return std::any_cast<const Value&>(Find(name)->value);
  }
  // The same of one that is an Integer, whose range fits the type.
  template <typename Value>
  Value Integer(std::string_view name) const {
    return static_cast<Value>(Get<std::int64_t>(name));
  }

  const std::vector<std::pair<std::string, Argument>>& all() const { return all_; }

 private:
  const Argument* Find(std::string_view name) const;

  std::vector<std::pair<std::string, Argument>> all_;
};

// One thing that can be done to a board, by hand, by a scenario or as a fault. `apply` runs with the
// desk locked and gives a remark for the user, mostly none; it throws UsageError when the board is
// not in a state for it.
struct Verb {
  std::string name;
  std::string help;
  std::vector<Parameter> parameters{};
  std::function<std::string(Desk& desk, const Arguments& given)> apply{};
  std::string subject{};  // the heading that it is listed under
};

// All verbs, in the order in which they are listed.
const std::vector<Verb>& Verbs();
std::vector<Verb> VehicleVerbs();
std::vector<Verb> DeviceVerbs();
std::vector<Verb> FaultVerbs();

// Null when there is none of this name.
const Verb* FindVerb(std::string_view name, const std::vector<Verb>& verbs = Verbs());

// The kinds of faults are the names of these verbs without the prefix: "silence" for fault-silence.
inline constexpr std::string_view kFaultPrefix = "fault-";
std::vector<std::string> FaultKinds();
std::string NameOf(AnswerFaultKind kind);

// " (else 30s)" for a parameter that may be left out, or nothing.
std::string FallbackText(const Parameter& parameter);

// A sentence about a verb that is not there.
std::string UnknownVerb(std::string_view name, const std::vector<Verb>& verbs = Verbs());

// The values for `verb` in `members`, whose other members (those in `ignored`) are not looked at. Tells
// `complain` of all that is wrong, with the member, or null when one is missing; throws UsageError when there
// is none to tell.
using Complain = std::function<void(const Json* member, const std::string& problem)>;
Arguments CheckArguments(const Verb& verb, const Json& members, const std::vector<std::string>& ignored = {},
                         const Complain& complain = nullptr);

struct Action {
  const Verb* verb = nullptr;
  Arguments arguments;
};

// An action as words of a command line: values in the order of the parameters, or as name=value. The
// last of the parameters takes all words that are left if it may hold blanks. Both throw UsageError.
Json MembersFromWords(const Verb& verb, const std::vector<std::string>& words);
Action ParseAction(const std::vector<std::string>& words);

// A fault as the command line has it: "silence:MCVG:times=2" is the verb fault-silence.
Action ParseFault(const std::string& text);

// As words again: "battery-voltage volts=11.2".
std::string Describe(const Action& action);

// "VOLTS [TIME]", and several lines that say all of a verb.
std::string Synopsis(const Verb& verb);
std::string FullHelp(const Verb& verb);

}  // namespace rolu_sim
