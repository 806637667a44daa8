#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace rolu {

// The known name that `name` was most likely meant to be; empty when none is close.
std::string NearestName(std::string_view name, const std::vector<std::string>& known);

// "; did you mean 'NEAREST'?", or nothing.
std::string Suggestion(std::string_view name, const std::vector<std::string>& known);

}  // namespace rolu
