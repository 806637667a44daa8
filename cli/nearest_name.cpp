#include "cli/nearest_name.h"

#include <algorithm>

namespace rolu {
namespace {

// The number of edits that turn one text into the other. An edit inserts, deletes or replaces a character, or
// swaps two neighbours.
std::size_t EditDistance(std::string_view from, std::string_view to) {
  // edits[i][j] is the distance between the first i and the first j characters.
  std::vector<std::vector<std::size_t>> edits(from.size() + 1, std::vector<std::size_t>(to.size() + 1));
  for (std::size_t i = 0; i <= from.size(); ++i) {
    for (std::size_t j = 0; j <= to.size(); ++j) {
      std::size_t& fewest = edits[i][j] = i + j;
      if (i == 0 || j == 0) continue;
      const bool same = from[i - 1] == to[j - 1];
      fewest = std::min({edits[i - 1][j] + 1, edits[i][j - 1] + 1, edits[i - 1][j - 1] + (same ? 0 : 1)});
      const bool swapped = i > 1 && j > 1 && from[i - 1] == to[j - 2] && from[i - 2] == to[j - 1];
      if (swapped) fewest = std::min(fewest, edits[i - 2][j - 2] + 1);
    }
  }
  return edits.back().back();
}

}  // namespace

std::string Suggestion(std::string_view unknown, const std::vector<std::string>& known) {
  // If more than a third of the characters are wrong, the user did not mean this name.
  std::size_t closest = std::max<std::size_t>(unknown.size() / 3, 2) + 1;
  std::string_view nearest;
  const auto compare = [&](std::string_view part, std::string_view name, std::size_t handicap) {
    // A name that begins with the unknown text is the nearest.
    const bool is_beginning = unknown.size() >= 3 && part.starts_with(unknown);
    const std::size_t distance = (is_beginning ? 0 : EditDistance(unknown, part)) + handicap;
    // Any short text is near to a short name, so the distance must be less than half of the name's length.
    if (distance >= closest || distance * 2 >= part.size()) return;
    closest = distance;
    nearest = name;
  };
  for (const std::string& name : known) {
    compare(name, name, 0);
    // People leave out the group of a setting: "voltage" is battery.voltage. A whole name is nearer.
    const std::size_t dot = name.rfind('.');
    if (dot != std::string::npos) compare(std::string_view(name).substr(dot + 1), name, 1);
  }
  return nearest.empty() ? "" : "; did you mean " + std::string(nearest) + "?";
}

}  // namespace rolu
