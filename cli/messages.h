#pragma once

#include <string>
#include <string_view>

namespace rolu {

// Messages for people, on standard error: "PROGRAM: TEXT". The name is red in front of a problem, on a
// terminal.
void Say(std::string_view text);
void SayProblem(std::string_view text);

// Whether a stream (1 or 2) may carry colour: a terminal that can, and no NO_COLOR.
bool MayColour(int fd);

// The system's words for an errno.
std::string ErrnoText(int error);

}  // namespace rolu
