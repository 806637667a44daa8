#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "simulator/json.h"

namespace rolu_sim {

class Desk;

// One subject of what can be read of a board: what programs did to it, and what they see of it. The
// members' names end in their units. `read` runs with the desk locked.
struct Reading {
  std::string name;
  std::string help;
  Json (*read)(Desk& desk);
};

const std::vector<Reading>& Readings();

// Null when there is none of this name.
const Reading* FindReading(std::string_view name);
std::string UnknownReading(std::string_view name);

// All readings of these names, or all there are but the long lists, by name.
Json ReadBoard(Desk& desk, const std::vector<std::string>& names);

// Readings as a text of indented lines, with units: "voltage: 12.6 V".
std::string ReadingsAsText(const Json& readings);

}  // namespace rolu_sim
