// Compares the header with the built library and with the durations by which the soak judges.
#include <gmock/gmock.h>

#include <regex>
#include <sstream>

#include "tests/support/interface_header.h"
#include "tests/support/process.h"

namespace rolu_test {
namespace {

std::string ElfOf(const char* option) {
  return Process({READELF, "-W", option, LIBRARY}, "", {"LC_ALL=C", "PATH=/usr/bin:/bin"}).WaitForAll().out;
}

TEST(Header, DeclaresExactlyWhatTheLibraryExports) {
  std::set<std::string> declared;
  for (const auto& [name, comment] : DeclaredFunctions()) {
    declared.insert("KAVO_ROLU_" + name + "@@KAVO_ROLU_3");
  }
  // Functions may be added, but none may be removed.
  ASSERT_GE(declared.size(), 150U);
  // Columns: number, value, size, type, binding, visibility, section, name@@version. The version itself is a
  // symbol without a section.
  const std::string symbols = ElfOf("--dyn-syms");
  EXPECT_EQ(MatchesIn(symbols, R"(FUNC +GLOBAL +DEFAULT +\d+ +(\S+))"), declared);
  EXPECT_EQ(MatchesIn(symbols, R"((?:GLOBAL|WEAK|UNIQUE) +[A-Z]+ +\d+ +(\S+))"), declared)
      << "and no other symbol";
  const std::string dynamic = ElfOf("--dynamic");
  // A sanitizer adds its own runtime.
  if (!SANITIZED) {
    EXPECT_THAT(MatchesIn(dynamic, R"(Shared library: \[([^\]]+)\])"), testing::ElementsAre("libc.so.6"));
  }
  EXPECT_THAT(MatchesIn(dynamic, R"(Library soname: \[([^\]]+)\])"),
              testing::ElementsAre("libkavo_rolu.so.3"));
}

TEST(Header, StatesHowLongEachFunctionBlocksInTheTermsOfItsRules) {
  const std::regex terms(
      "[1-9] commands?|the link|a closing|the inner lock|device files|bus transfers|the shell command|"
      "the second|each|with 2 answer lines and a post-delay of [0-9]+ ms|with a post-delay of [0-9]+ ms|"
      "at most [0-9]+ ms|and [0-9]+ ms between them|without a limit|the MCU's switch|"
      "the wireless interface|the GPS power|\\([^)]*\\)|then|[ ,;]+");
  for (const auto& [name, comment] : DeclaredFunctions()) {
    const std::string statement = BlockingStatement(comment);
    EXPECT_NE(statement.empty(), comment.find("Does not block.") == std::string::npos) << name;
    EXPECT_EQ(std::regex_replace(statement, terms, ""), "") << name << ": " << statement;
  }
}

#ifdef SOAK
// The number in `text` at the first group of the pattern; 0 when the pattern does not match.
int NumberIn(const std::string& text, const std::string& pattern) {
  const std::set<std::string> numbers = MatchesIn(text, pattern);
  return numbers.empty() ? 0 : std::stoi(*numbers.begin());
}

int Rule(const std::string& pattern) {
  const int number = NumberIn(HeaderText(), pattern);
  EXPECT_GT(number, 0) << "the general rules do not say: " << pattern;
  return number;
}

// The milliseconds of a statement, without the turns; -1 means no limit.
int MillisecondsOf(const std::string& statement) {
  static const int command_ms = Rule(R"("1 command": a turn, then at most (\d+) ms)");
  static const int link_ms = Rule(R"("the link": at most (\d+) ms)");
  static const int closing_ms = Rule(R"("a closing": at most (\d+) ms for a turn)") +
                                Rule(R"("a closing": at most \d+ ms for a turn[^-]*at most (\d+) ms)");
  const auto says = [&](const char* words) { return statement.find(words) != std::string::npos; };
  if (says("without a limit")) return -1;
  if (says("the inner lock")) return NumberIn(statement, R"(the inner lock, at most (\d+) ms)");
  int sum = (says("the link") ? link_ms : 0) + (says("a closing") ? closing_ms : 0);
  int commands = NumberIn(statement, R"((\d+) commands?)");
  if (says("answer lines")) commands = NumberIn(statement, R"((\d+) answer lines)");
  sum += commands * command_ms;
  return sum + (says("each with") ? commands : 1) * NumberIn(statement, R"(post-delay of (\d+) ms)");
}

TEST(Header, IsWhatTheSoakJudgesBy) {
  std::map<std::string, std::string> functions = DeclaredFunctions();
  std::istringstream promises(Process({SOAK, "--promises"}).WaitForAll().out);
  size_t compared = 0;
  for (std::string line; std::getline(promises, line); ++compared) {
    std::smatch promise;
    ASSERT_TRUE(std::regex_match(line, promise, std::regex(R"(KAVO_ROLU_(\w+) \| (.+) \| (-?\d+))"))) << line;
    const std::string comment = functions[promise[1]];
    const std::string stated =
        comment.find("Does not block.") == std::string::npos ? BlockingStatement(comment) : "Does not block";
    EXPECT_THAT(stated, testing::HasSubstr(promise[2])) << line;
    EXPECT_EQ(MillisecondsOf(promise[2]), std::stoi(promise[3])) << line;
  }
  EXPECT_GT(compared, 0U);
}
#endif

}  // namespace
}  // namespace rolu_test
