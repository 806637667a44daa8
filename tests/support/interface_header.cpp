#include "tests/support/interface_header.h"

#include <fstream>
#include <regex>
#include <sstream>

#include "tests/oracle/operations.h"

namespace rolu_test {

std::map<std::string, std::string> DeclaredFunctions() {
  std::stringstream header;
  header << std::ifstream(ROLU_HEADER).rdbuf();
  const std::string text = header.str();
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
  constexpr char kBlocks[] = "Blocks: ";
  const size_t start = comment.find(kBlocks);
  if (start == std::string::npos) return "";
  const std::string statement = comment.substr(start, comment.find('.', start) - start);
  return std::regex_replace(statement.substr(sizeof kBlocks - 1), std::regex(R"(\s*\n \* )"), " ");
}

}  // namespace rolu_test
