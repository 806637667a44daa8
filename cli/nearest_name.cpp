#include "cli/nearest_name.h"

#include <algorithm>

namespace rolu {
namespace {

// How many characters must be inserted, deleted, replaced or swapped with their neighbours to get from one
// text to the other.
std::size_t EditDistance(std::string_view from, std::string_view to) {
  // By how many characters of the one and of the other.
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
  // More than a third of the characters wrong is another name, not a slip.
  std::size_t closest = std::max<std::size_t>(unknown.size() / 3, 2) + 1;
  std::string_view nearest;
  for (const std::string& name : known) {
    // A name that was not typed to its end is the nearest.
    const bool is_beginning = unknown.size() >= 3 && name.starts_with(unknown);
    const std::size_t distance = is_beginning ? 0 : EditDistance(unknown, name);
    // A short name is near to everything.
    if (distance >= closest || distance * 2 >= name.size()) continue;
    closest = distance;
    nearest = name;
  }
  return nearest.empty() ? "" : "; did you mean " + std::string(nearest) + "?";
}

}  // namespace rolu
