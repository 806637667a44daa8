#include "tests/support/interface_header.h"

#include <fstream>
#include <regex>
#include <sstream>

#include "tests/oracle/operations.h"

namespace rolu_test {

const std::string& HeaderText() {
  static const std::string text = [] {
    std::stringstream header;
    header << std::ifstream(ROLU_HEADER).rdbuf();
    return std::regex_replace(header.str(), std::regex(R"((\s*\n \*|\s)\s*)"), " ");
  }();
  return text;
}

std::map<std::string, std::string> DeclaredFunctions() {
  const std::string& text = HeaderText();
  std::map<std::string, std::string> functions;
  const std::regex declaration("KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_(\\w+)");
  for (std::sregex_iterator match(text.begin(), text.end(), declaration), end; match != end; ++match) {
    const auto at = static_cast<size_t>(match->position());
    const size_t comment = text.rfind("/**", at);
    functions[(*match)[1]] = text.substr(comment, at - comment);
  }
  return functions;
}

std::set<std::string> DeclaredForMcuFamilies() {
  std::set<std::string> declared;
  for (const auto& [function, comment] : DeclaredFunctions()) {
    for (const McuFamily& family : McuFamilies()) {
      if (function.compare(0, family.prefix.size(), family.prefix) == 0) declared.insert(function);
    }
  }
  return declared;
}

std::string BlockingStatement(const std::string& comment) {
  const std::set<std::string> statements = MatchesIn(comment, R"(Blocks: ([^.]+)\.)");
  return statements.empty() ? "" : *statements.begin();
}

std::set<std::string> MatchesIn(const std::string& text, const std::string& pattern) {
  const std::regex regex(pattern);
  std::set<std::string> found;
  for (std::sregex_iterator match(text.begin(), text.end(), regex), end; match != end; ++match) {
    found.insert((*match)[1]);
  }
  return found;
}

}  // namespace rolu_test
