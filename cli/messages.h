#pragma once

#include <string>
#include <string_view>

namespace rolu {

// Messages for people, on standard error: "PROGRAM: TEXT". On a terminal the program's name is red in a
// problem message.
void Say(std::string_view text);
void SayProblem(std::string_view text);

// Whether stream 1 or 2 may carry colour: it is a terminal that supports colour, and NO_COLOR is not set.
bool MayColour(int fd);

// The system's text for an errno.
std::string ErrnoText(int error);

}  // namespace rolu
