#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <string_view>

namespace rolu {

// The help of a command alone, whatever else the command line holds.
std::string HelpOf(const CLI::App& command);

// Fits a text to standard output. Lines that are longer than COLUMNS, or else than the terminal's width, go
// on in the next line under their last column. Whole command lines of `program` stay as they are.
std::string FitToOutput(std::string_view text, std::string_view program);

// The same for a width; 0 is no limit.
std::string Wrapped(std::string_view text, std::size_t width, std::string_view program);

// Prints a help text on standard output.
void PrintHelp(std::string_view text, std::string_view program);

}  // namespace rolu
