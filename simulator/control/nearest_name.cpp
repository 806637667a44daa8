#include "simulator/control/nearest_name.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <utility>

namespace rolu_sim {
namespace {

// How many characters must be inserted, deleted or exchanged, or swapped with their neighbours, to make
// one of the other.
std::size_t EditDistance(std::string_view one, std::string_view other) {
  std::vector<std::size_t> row(other.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  std::vector<std::size_t> above;
  std::vector<std::size_t> two_above;
  for (std::size_t at = 1; at <= one.size(); ++at) {
    two_above = std::exchange(above, row);
    row[0] = at;
    for (std::size_t column = 1; column <= other.size(); ++column) {
      const std::size_t exchanged = above[column - 1] + (one[at - 1] == other[column - 1] ? 0 : 1);
      row[column] = std::min({exchanged, row[column - 1] + 1, above[column] + 1});
      const bool is_swapped =
          at > 1 && column > 1 && one[at - 1] == other[column - 2] && one[at - 2] == other[column - 1];
      if (is_swapped) row[column] = std::min(row[column], two_above[column - 2] + 1);
    }
  }
  return row.back();
}

}  // namespace

std::string DidYouMean(std::string_view unknown, const std::vector<std::string>& known) {
  std::size_t best = std::max<std::size_t>(2, unknown.size() / 3) + 1;
  const std::string* nearest = nullptr;
  for (const std::string& name : known) {
    const bool is_beginning = unknown.size() >= 3 && name.compare(0, unknown.size(), unknown) == 0;
    const std::size_t distance = is_beginning ? 1 : EditDistance(unknown, name);
    if (distance >= best || distance * 2 >= name.size()) continue;
    best = distance;
    nearest = &name;
  }
  return nearest == nullptr ? std::string() : fmt::format(" (did you mean \"{}\"?)", *nearest);
}

}  // namespace rolu_sim
