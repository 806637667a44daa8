#pragma once

#include <string>

#include "simulator/mcu/mcu_event.h"

namespace rolu_sim {

// Lets the programs on a board share the fate of its computer: they end when it loses its power or is reset,
// they stop while it is suspended. A program is on the board if it was started with the board's environment.
// rolu-sim itself never is.
void FollowComputer(const McuEvent& event, const std::string& board_directory);

// Ends all programs on the board at once.
void EndPrograms(const std::string& board_directory);

// Lets programs go on that were stopped: the board goes down.
void ContinuePrograms(const std::string& board_directory);

}  // namespace rolu_sim
