#pragma once

#include <nlohmann/json.hpp>

namespace rolu_sim {

// Members keep the order in which they were written: people read these texts too.
using Json = nlohmann::ordered_json;

}  // namespace rolu_sim
