#pragma once

#include <functional>
#include <string>
#include <vector>

#include "simulator/desk/occurrence.h"
#include "simulator/desk/verb.h"

namespace rolu_sim {

enum class Verdict { kPending, kMet, kFailed };

// Something that a scenario can expect. Each function but `verb` may be empty.
struct ExpectationKind {
  Verb verb;  // its name, help and parameters, without `apply`
  // Judges by one occurrence while the expectation is pending.
  std::function<Verdict(const Arguments& wanted, const Occurrence& occurrence)> judge{};
  // Whether the board is as expected.
  std::function<bool(Desk& desk, const Arguments& wanted)> holds{};
  // What there is on the board instead.
  std::function<std::string(Desk& desk, const Arguments& wanted)> instead{};
  bool is_of_program = false;   // it expects something of the program that a board was started for
  bool is_met_by_time = false;  // when the time is over and nothing has failed it
};

const std::vector<ExpectationKind>& ExpectationKinds();

// The same as verbs, for the help and for CheckArguments.
const std::vector<Verb>& ExpectationVerbs();

struct Expectation {
  const ExpectationKind* kind = nullptr;
  Arguments arguments;

  // How many occurrences meet it.
  long Times() const;
};

// "command MCVG times 2".
std::string Describe(const Expectation& expectation);

// The names of the events of a board that a scenario can wait for.
const std::vector<std::string>& BoardEventNames();

// The codes of the MCU's commands.
const std::vector<std::string>& CommandCodes();

}  // namespace rolu_sim
