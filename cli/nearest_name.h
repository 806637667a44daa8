#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace rolu {

// The end of an error message. It is "; did you mean status?" when a known name is near to the unknown one,
// else empty.
std::string Suggestion(std::string_view unknown, const std::vector<std::string>& known);

}  // namespace rolu
