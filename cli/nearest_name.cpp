#include "cli/nearest_name.h"

#include <algorithm>
#include <numeric>

namespace rolu {
namespace {

// How many characters must be inserted, deleted, replaced or swapped with their neighbours to get from one
// text to the other.
std::size_t EditDistance(std::string_view from, std::string_view to) {
  std::vector<std::size_t> before_last(to.size() + 1);
  std::vector<std::size_t> last(to.size() + 1);
  std::vector<std::size_t> row(to.size() + 1);
  std::iota(last.begin(), last.end(), std::size_t{0});
  for (std::size_t i = 1; i <= from.size(); ++i) {
    row[0] = i;
    for (std::size_t j = 1; j <= to.size(); ++j) {
      const bool same = from[i - 1] == to[j - 1];
      row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + (same ? 0 : 1)});
      if (i > 1 && j > 1 && from[i - 1] == to[j - 2] && from[i - 2] == to[j - 1]) {
        row[j] = std::min(row[j], before_last[j - 2] + 1);
      }
    }
    before_last.swap(last);
    last.swap(row);
  }
  return last[to.size()];
}

// A name that was not typed to its end is the nearest.
std::size_t Distance(std::string_view unknown, std::string_view name) {
  const bool is_beginning = unknown.size() >= 3 && name.starts_with(unknown);
  return is_beginning ? 0 : EditDistance(unknown, name);
}

}  // namespace

std::string Suggestion(std::string_view unknown, const std::vector<std::string>& known) {
  // More than a third of the characters wrong is another name, not a slip.
  std::size_t closest = std::max<std::size_t>(unknown.size() / 3, 2) + 1;
  std::string_view nearest;
  for (const std::string& name : known) {
    const std::size_t distance = Distance(unknown, name);
    // A short name is near to everything.
    if (distance >= closest || distance * 2 >= name.size()) continue;
    closest = distance;
    nearest = name;
  }
  return nearest.empty() ? "" : "; did you mean " + std::string(nearest) + "?";
}

}  // namespace rolu
