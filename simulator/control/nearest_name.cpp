#include "simulator/control/nearest_name.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <numeric>

namespace rolu_sim {
namespace {

// How many characters must be inserted, deleted or exchanged to make one of the other.
std::size_t EditDistance(std::string_view one, std::string_view other) {
  std::vector<std::size_t> row(other.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t at = 0; at < one.size(); ++at) {
    std::size_t diagonal = row[0];
    row[0] = at + 1;
    for (std::size_t column = 0; column < other.size(); ++column) {
      const std::size_t exchanged = diagonal + (one[at] == other[column] ? 0 : 1);
      diagonal = row[column + 1];
      row[column + 1] = std::min({exchanged, row[column] + 1, diagonal + 1});
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
