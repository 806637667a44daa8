#pragma once

#include <functional>
#include <string>
#include <vector>

#include "simulator/desk/json.h"

namespace rolu_sim {

class Desk;

// One subject of what can be read of a board: what programs did to it, and what they see of it. The
// members' names end in their units. `read` runs with the desk locked.
struct Reading {
  std::string name;
  std::string help;
  std::function<Json(Desk& desk)> read;
};

const std::vector<Reading>& Readings();

// Throws UsageError when there is none of this name.
void CheckReading(const std::string& name);

// All readings of these names, or all there are but the long lists, by name.
Json ReadBoard(Desk& desk, const std::vector<std::string>& names);

// Readings as a text of indented lines, with units: "voltage: 12.6 V".
std::string ReadingsAsText(const Json& readings);

}  // namespace rolu_sim
