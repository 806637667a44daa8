#pragma once

#include <string>
#include <vector>

#include "simulator/control/verb.h"

namespace rolu_sim {

// What rolu-sim ctl does beside the verbs; these have no `apply`.
const std::vector<Verb>& ControlWords();
const Verb& ControlWord(std::string_view name);

// These and the verbs.
std::vector<Verb> AllWords();

// A sentence about a word that is neither one of these nor a verb.
std::string UnknownWord(std::string_view word);

// All words and verbs, one a line, by subject.
std::string ControlHelp();

}  // namespace rolu_sim
