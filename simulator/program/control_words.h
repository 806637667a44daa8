#pragma once

#include <string>
#include <vector>

#include "simulator/control/verb.h"

namespace rolu_sim {

// What rolu-sim ctl does beside the verbs; these have no `apply`.
const std::vector<Verb>& ControlWords();
const Verb& WaitWord();

// All words and verbs, one a line, by subject.
std::string ControlHelp();

}  // namespace rolu_sim
