// What the interface's header declares, for tests that hold their tables against it.
#ifndef TESTS_SUPPORT_INTERFACE_HEADER_H
#define TESTS_SUPPORT_INTERFACE_HEADER_H

#include <map>
#include <set>
#include <string>

namespace rolu_test {

// The header in one line, without the stars of its comments.
const std::string& HeaderText();

// Each function's comment, by its name without "KAVO_ROLU_".
std::map<std::string, std::string> DeclaredFunctions();

// Those of the families that talk to the MCU.
std::set<std::string> DeclaredForMcuFamilies();

// What a function's comment says behind "Blocks:"; empty if it does not block.
std::string BlockingStatement(const std::string& comment);

// What the first group of the pattern matches, at each of its places in the text.
std::set<std::string> MatchesIn(const std::string& text, const std::string& pattern);

}  // namespace rolu_test

#endif  // TESTS_SUPPORT_INTERFACE_HEADER_H
