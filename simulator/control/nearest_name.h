#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace rolu_sim {

// " (did you mean "lux"?)" when one of the known names is near enough to the unknown one, else
// nothing: the end of an error message.
std::string DidYouMean(std::string_view unknown, const std::vector<std::string>& known);

}  // namespace rolu_sim
