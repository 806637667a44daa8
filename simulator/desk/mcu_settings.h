#pragma once

#include <functional>
#include <string>
#include <vector>

#include "simulator/desk/parameter.h"
#include "simulator/mcu/mcu_model.h"

namespace rolu_sim {

// The names of the MCU's settings, as the command `rolu list` shows them.
std::vector<std::string> McuSettingNames();

// Reads the value for a setting and gives the order that makes it: it lets the MCU carry out the command that
// a program would send. Both throw UsageError; the order does when the MCU refuses the value.
std::function<void(McuModel& mcu)> McuSettingOrder(const std::string& name, const std::string& value);

// "ignition.hard-off-delay=3", split at the sign.
std::pair<std::string, std::string> SplitMcuSetting(const std::string& text);

}  // namespace rolu_sim
