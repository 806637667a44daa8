#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace rolu {

// The end of an error message: "; did you mean status?" when one of the known names is near to the unknown
// one, else nothing.
std::string Suggestion(std::string_view unknown, const std::vector<std::string>& known);

}  // namespace rolu
