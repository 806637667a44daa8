#ifndef TESTS_DESK_TOOL_H
#define TESTS_DESK_TOOL_H

#include <gtest/gtest.h>
#include <signal.h>

#include <sstream>
#include <string>
#include <vector>

#include "tests/support/process.h"

namespace desk_test {

using rolu_test::Ended;
using rolu_test::Joined;
using rolu_test::Words;

// A directory of the test, in which rolu-sim makes its boards. At the end of the test no board may be left in
// it.
class Directory : public rolu_test::TemporaryDirectory {
 public:
  ~Directory() {
    for (const std::string& name : Names()) {
      EXPECT_FALSE(name.starts_with("rolu-")) << "a board left its directory behind";
    }
  }
};

// A process of rolu-sim that makes its boards in `directory`. The destructor ends it if it still runs.
class Tool : public rolu_test::Process {
 public:
  Tool(const Directory& directory, const std::vector<std::string>& arguments)
      : Process(Joined({ROLU_SIM}, arguments), "", {"TMPDIR=" + directory.path(), "PATH=/usr/bin:/bin"}) {}
  ~Tool() override {
    if (pid() <= 0) return;
    Signal(SIGTERM);
    Wait();
  }
};

// Runs rolu-sim to its end.
inline Ended RunTool(const Directory& directory, const std::vector<std::string>& arguments) {
  return Tool(directory, arguments).WaitForAll();
}

// The arguments with which rolu-sim runs desk_client on a private board.
inline std::vector<std::string> ClientRun(const std::string& options, const std::string& calls) {
  return Joined(Joined(Words("run " + options), {"--", DESK_CLIENT}), Words(calls));
}

// A served board in the directory directory.path() + "/board".
class ServedBoard {
 public:
  explicit ServedBoard(const Directory& directory, const std::vector<std::string>& options = {})
      : directory_(directory),
        path_(directory.File("board")),
        tool_(directory, Joined(Joined({"serve"}, options), {path_})) {
    EXPECT_TRUE(tool_.WaitForOutput("rolu-sim join")) << tool_.err();
  }

  Ended Ctl(const std::string& words) const {
    return RunTool(directory_, Joined({"ctl", "--board", path_}, Words(words)));
  }
  // Runs desk_client (see desk_client.cpp) on the board.
  Ended Client(const std::string& calls) const {
    return RunTool(directory_, Joined({"join", path_, "--", DESK_CLIENT}, Words(calls)));
  }
  nlohmann::json Get(const std::string& reading) const {
    return Ctl("get --json " + reading).Json().at(reading);
  }

  Tool& tool() { return tool_; }
  const std::string& path() const { return path_; }

 private:
  const Directory& directory_;
  std::string path_;
  Tool tool_;
};

// The records of a trace in JSON.
inline std::vector<nlohmann::json> Records(const std::string& text) {
  std::vector<nlohmann::json> records;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) records.push_back(nlohmann::json::parse(line));
  return records;
}

}  // namespace desk_test

#endif  // TESTS_DESK_TOOL_H
