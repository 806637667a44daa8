#pragma once

#include <string>

#include "simulator/desk/desk.h"

namespace rolu_sim {

// Lets the programs on a board share the fate of its computer: they end when it loses its power or is reset,
// they stop while it is suspended. A program is on the board if it was started with the board's environment.
// rolu-sim itself never is.
void FollowComputer(const McuEvent& event, const std::string& board_directory);

// Ends all programs on the board at once.
void EndPrograms(const std::string& board_directory);

// Lets the programs of a suspended computer go on: they are to end, or the board goes down.
void ContinuePrograms(Desk& desk);

}  // namespace rolu_sim
