#pragma once

#include <functional>
#include <string>
#include <vector>

#include "simulator/desk/json.h"

namespace rolu_sim {

class Desk;

// One subject that can be read of a board: what programs did to it, and what they see of it. Each member's
// name ends in its unit. `read` runs with the desk locked.
struct Reading {
  std::string name;
  std::string help;
  std::function<Json(Desk& desk)> read;
};

const std::vector<Reading>& Readings();

// Throws UsageError when there is no reading of this name.
void CheckReading(const std::string& name);

// The named readings, by name. Without names: all readings except the long lists.
Json ReadBoard(Desk& desk, const std::vector<std::string>& names);

// Readings as a text of indented lines, with units: "voltage: 12.6 V".
std::string ReadingsAsText(const Json& readings);

}  // namespace rolu_sim
