#include "tools/nearest.h"

#include <algorithm>
#include <numeric>

namespace rolu {
namespace {

// Insertions, deletions, replacements and swaps of neighbours that lead from one text to the other.
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

}  // namespace

std::string NearestName(std::string_view name, const std::vector<std::string>& known) {
  // More than a third of the characters wrong is another name, not a slip.
  std::size_t closest = std::max<std::size_t>(name.size() / 3, 2) + 1;
  std::string nearest;
  for (const std::string& candidate : known) {
    const std::size_t distance = EditDistance(name, candidate);
    // Of two that are equally near, a name that was not typed to its end.
    const bool is_longer = distance == closest && !nearest.empty() && candidate.rfind(name, 0) == 0;
    if (distance < closest || is_longer) {
      closest = distance;
      nearest = candidate;
    }
  }
  return nearest;
}

std::string Suggestion(std::string_view name, const std::vector<std::string>& known) {
  const std::string nearest = NearestName(name, known);
  return nearest.empty() ? "" : "; did you mean '" + nearest + "'?";
}

}  // namespace rolu
