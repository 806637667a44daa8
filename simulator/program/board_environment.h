#pragma once

#include <CLI/CLI.hpp>
#include <chrono>
#include <string>

namespace rolu_sim {

// Makes the programs that this process starts use the board in `board_directory`. Sets environment variables:
// call it while no other thread reads the environment.
void MeetBoard(const std::string& board_directory);

// The text as one word for a shell, in quotes if necessary.
std::string ShellWord(const std::string& text);

// The variables that MeetBoard sets, as assignments for a shell.
std::string ShellAssignments(const std::string& board_directory);

// A board that is already up, and how long to wait for it to come up.
struct BoardChoice {
  std::string directory;
  std::chrono::milliseconds patience{0};
};
void AddBoardChoice(CLI::App& command, BoardChoice& board);
void AddWaitOption(CLI::App& command, BoardChoice& board);

// The directory of the board that a command is for: the one that the user named, else the one that this
// process uses. Throws UsageError when there is neither.
std::string BoardDirectory(const std::string& named);

}  // namespace rolu_sim
