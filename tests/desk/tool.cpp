#include "tests/desk/tool.h"

#include <gtest/gtest.h>
#include <signal.h>

#include <sstream>

namespace desk_test {

Directory::~Directory() {
  for (const std::string& name : Names()) {
    EXPECT_NE(name.substr(0, 5), "rolu-") << "a board left its directory behind";
  }
}

Tool::Tool(const Directory& directory, const std::vector<std::string>& arguments)
    : Process(Joined({ROLU_SIM}, arguments), "", {"TMPDIR=" + directory.path(), "PATH=/usr/bin:/bin"}) {}

Tool::~Tool() {
  if (pid() <= 0) return;
  Signal(SIGTERM);
  Wait();
}

Ended RunTool(const Directory& directory, const std::vector<std::string>& arguments) {
  return Tool(directory, arguments).WaitForAll();
}

ServedBoard::ServedBoard(const Directory& directory, const std::vector<std::string>& options)
    : directory_(directory),
      path_(directory.File("board")),
      tool_(directory, Joined(Joined({"serve"}, options), {path_})) {
  EXPECT_TRUE(tool_.WaitForOutput("rolu-sim join")) << tool_.err();
}

Ended ServedBoard::Ctl(const std::string& words) const {
  return RunTool(directory_, Joined({"ctl", "--board", path_}, Words(words)));
}

Ended ServedBoard::Client(const std::string& calls) const {
  return RunTool(directory_, Joined({"join", path_, "--", DESK_CLIENT}, Words(calls)));
}

nlohmann::json ServedBoard::Get(const std::string& reading) const {
  return Ctl("get --json " + reading).Json().at(reading);
}

std::vector<std::string> ClientRun(const std::string& options, const std::string& calls) {
  return Joined(Joined(Words("run " + options), {"--", DESK_CLIENT}), Words(calls));
}

std::vector<nlohmann::json> Records(const std::string& text) {
  std::vector<nlohmann::json> records;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) records.push_back(nlohmann::json::parse(line));
  return records;
}

}  // namespace desk_test
