#pragma once

#include <string>

#include "simulator/devices/board_paths.h"

namespace rolu_sim {

// The socket in a board's directory through which clients steer the board. Both sides send lines of JSON. A
// request is an object with one of these members:
//   "do"    a verb, its parameters beside it    answer: {"ok": true, "remark": "..."}
//   "get"   a list of readings' names           answer: {"ok": true, "board": {...}}
//   "trace" "past", "follow" (from the start) or "next" (from now on)
//                                               answer: {"ok": true}, then a line for each record
//   "play"  {"name": ..., "text": ...}, a scenario    answer: {"ok": true}
//   "stop"  true: the board goes down           answer: {"ok": true}
// A request that fails is answered with {"ok": false, "error": "...", "kind": "usage" or "refused"}.
inline std::string ControlSocketPath(const std::string& board_directory) {
  return board_directory + kControlSocketName;
}

}  // namespace rolu_sim
