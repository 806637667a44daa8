#include "mcu/line_assembler.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace {

std::vector<std::string> Assemble(const std::string& bytes) {
  LineAssembler assembler;
  std::vector<std::string> lines;
  for (const char byte : bytes) {
    if (assembler.Take(static_cast<unsigned char>(byte))) {
      lines.emplace_back(assembler.text(), assembler.length());
      EXPECT_EQ(assembler.text()[assembler.length()], '\0');
    }
  }
  return lines;
}

TEST(LineAssembler, CutsTheStreamAtEveryLineEnd) {
  using std::string_literals::operator""s;
  const std::string longest(63, 'a');
  struct Row {
    std::string stream;
    std::vector<std::string> lines;
  };
  const Row rows[] = {
      {"", {}},
      {"02EB", {}},
      {"02EB\r", {"02EB"}},
      {"02EB\n", {"02EB"}},
      {"02EB\r\n", {"02EB"}},
      {"\r\n\r\n\n\r\r", {}},
      {"OK\r\n\r\n1\n\r2\r3", {"OK", "1", "2"}},
      {" \r\t\n", {" ", "\t"}},
      {longest + "\r\n", {longest}},
      {longest + "b\r\n", {}},
      {longest + "b\rOK\r", {"OK"}},
      {std::string(1000, 'c') + "\n" + longest + "\n", {longest}},
      {"1\r" + std::string(64, 'd') + "\r" + std::string(65, 'e') + "\r2\r", {"1", "2"}},
      {"\0\r"s, {"\0"s}},
      {"02\0EB\r"s, {"02\0EB"s}},
      {"\xff\x80\x7f\x01\r", {"\xff\x80\x7f\x01"}},
      {"[GI:000100020003]\r\n", {"[GI:000100020003]"}},
  };
  for (const Row& row : rows)
    EXPECT_EQ(Assemble(row.stream), row.lines) << testing::PrintToString(row.stream);
}

TEST(LineAssembler, LineThatDidNotEndCanBeForgotten) {
  LineAssembler assembler;
  const auto take = [&assembler](const std::string& bytes) {
    bool complete = false;
    for (const char byte : bytes) complete = assembler.Take(static_cast<unsigned char>(byte));
    return complete ? assembler.text() : std::string("no line");
  };
  EXPECT_FALSE(assembler.HoldsPart());
  for (const std::string& part : {std::string("02"), std::string(63, 'a'), std::string(80, 'a')}) {
    take(part);
    EXPECT_TRUE(assembler.HoldsPart()) << part;
    assembler.Reset();
    EXPECT_FALSE(assembler.HoldsPart()) << part;
    EXPECT_EQ(take("EB\r"), "EB");
    EXPECT_FALSE(assembler.HoldsPart()) << "a whole line is no part of one";
  }
}

}  // namespace
