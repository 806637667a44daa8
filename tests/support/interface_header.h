// Reads the declarations of the interface's header, for tests that compare their tables with it.
#ifndef TESTS_SUPPORT_INTERFACE_HEADER_H
#define TESTS_SUPPORT_INTERFACE_HEADER_H

#include <map>
#include <set>
#include <string>

namespace rolu_test {

// The header as one line, without the stars of its comments.
const std::string& HeaderText();

// The comment of each function, by the function's name without "KAVO_ROLU_".
std::map<std::string, std::string> DeclaredFunctions();

// The functions of the families that talk to the MCU.
std::set<std::string> DeclaredForMcuFamilies();

// The text after "Blocks:" in a function's comment; empty if the function does not block.
std::string BlockingStatement(const std::string& comment);

// All that the pattern's first group matches in the text.
std::set<std::string> MatchesIn(const std::string& text, const std::string& pattern);

}  // namespace rolu_test

#endif  // TESTS_SUPPORT_INTERFACE_HEADER_H
