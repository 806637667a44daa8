#pragma once

#include <chrono>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/control/parameter.h"
#include "simulator/json.h"

namespace rolu_sim {

class Desk;

// The checked values of a verb's parameters, each in its one form.
class Arguments {
 public:
  Arguments() = default;
  explicit Arguments(Json values) : values_(std::move(values)) {}

  bool Has(const char* name) const { return values_.contains(name); }
  long Integer(const char* name) const { return values_.at(name).get<long>(); }
  double Number(const char* name) const { return values_.at(name).get<double>(); }
  std::string Text(const char* name) const { return values_.at(name).get<std::string>(); }
  bool IsOn(const char* name) const { return Text(name) == "on"; }
  std::chrono::milliseconds Duration(const char* name) const;
  std::string Bytes(const char* name) const;

  const Json& values() const { return values_; }

 private:
  Json values_ = Json::object();
};

// One thing that can be done to a board, by hand, by a scenario or as a fault. `apply` runs with the
// desk locked and gives a remark for the user, mostly none; it throws UsageError when the board is
// not in a state for it.
struct Verb {
  std::string name;
  std::string subject;  // the heading that it is listed under
  std::string help;
  std::vector<Parameter> parameters;
  std::string (*apply)(Desk& desk, const Arguments& arguments);
};

// All verbs, in the order in which they are listed.
const std::vector<Verb>& Verbs();
std::vector<Verb> VehicleVerbs();
std::vector<Verb> DeviceVerbs();
std::vector<Verb> FaultVerbs();

// Null when there is none of this name.
const Verb* FindVerb(std::string_view name);

// What ParseFault takes: "silence" for the verb fault-silence.
std::vector<std::string> FaultKinds();

// " (else 30s)" for a parameter that may be left out, or nothing.
std::string FallbackText(const Parameter& parameter);

// A sentence about a verb that is not there.
std::string UnknownVerb(std::string_view name);

// What is wrong with a member of an action; `member` is empty when one is missing.
struct Problem {
  std::string member;
  std::string text;
};

// The values for `verb` in `members`, whose other members (those in `ignored`) are not looked at.
// What cannot be goes to `problems`.
Arguments CheckArguments(const Verb& verb, const Json& members, const std::vector<std::string>& ignored,
                         std::vector<Problem>& problems);

struct Action {
  const Verb* verb = nullptr;
  Arguments arguments;
};

// An action as words of a command line: values in the order of the parameters, or as name=value. The
// last of the parameters takes all words that are left if it may hold blanks. Both throw UsageError.
Json MembersFromWords(const Verb& verb, const std::vector<std::string>& words);
Action ParseAction(const std::vector<std::string>& words);

// A fault as the command line has it: "silence:MCVG:times=2" is the verb fault-silence.
Action ParseFault(std::string_view text);

// As words again: "battery-voltage volts=11.2".
std::string Describe(const Action& action);

// "VOLTS [TIME]", and several lines that say all of a verb.
std::string Synopsis(const Verb& verb);
std::string FullHelp(const Verb& verb);

}  // namespace rolu_sim
