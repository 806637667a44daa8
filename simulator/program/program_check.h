#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace rolu_sim {

// What a program file is, as far as it matters to the board's preloaded object.
enum class ProgramKind {
  kOrdinary,          // also when the file cannot be found or read
  kStatic,            // has no loader that could load the object
  kPrivileged,        // set-user-ID and the like: its loader ignores LD_PRELOAD
  kForeign,           // for another processor than this one
  kDropsEnvironment,  // starts a program without the environment that names the board
};

struct ProgramCheck {
  ProgramKind kind = ProgramKind::kOrdinary;
  std::string path{};                   // of the file in question
  unsigned machine = 0;                 // of an executable, as in its ELF header
  std::optional<std::size_t> position;  // of the file among the words; none for a script's interpreter
};

// Looks at the program that the words of a command start. It follows PATH, the interpreters of scripts, and
// env, nohup and setsid to what they start.
ProgramCheck CheckProgram(const std::vector<std::string>& command);

// Warns on standard error if the program will not see the board in `board_directory`, and says what to do.
// Gives the words that start it: an ARM program starts under qemu-arm if that and the preloaded object for it
// are there. Call it after MeetBoard, in the process that starts the program.
std::vector<std::string> PrepareProgram(const std::vector<std::string>& command,
                                        const std::string& board_directory);

}  // namespace rolu_sim
