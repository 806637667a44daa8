#ifndef TESTS_DESK_TOOL_H
#define TESTS_DESK_TOOL_H

#include <string>
#include <vector>

#include "tests/support/process.h"

namespace desk_test {

using rolu_test::Ended;
using rolu_test::Joined;
using rolu_test::Words;

// A directory of the test's own, in which rolu-sim makes its boards; at the end of the test nothing
// may be left of them.
class Directory : public rolu_test::TemporaryDirectory {
 public:
  ~Directory();
};

// rolu-sim in a process of its own, that makes its boards in `directory`. It is ended if it still runs.
class Tool : public rolu_test::Process {
 public:
  Tool(const Directory& directory, const std::vector<std::string>& arguments);
  ~Tool() override;
};

// A run of rolu-sim from beginning to end.
Ended RunTool(const Directory& directory, const std::vector<std::string>& arguments);

// A board that is up at directory.path() + "/board".
class ServedBoard {
 public:
  explicit ServedBoard(const Directory& directory, const std::vector<std::string>& options = {});

  Ended Ctl(const std::string& words) const;
  // A program (see desk_client.cpp) on the board.
  Ended Client(const std::string& calls) const;
  nlohmann::json Get(const std::string& reading) const;

  Tool& tool() { return tool_; }
  const std::string& path() const { return path_; }

 private:
  const Directory& directory_;
  std::string path_;
  Tool tool_;
};

// The words for rolu-sim that run desk_client on a board of its own.
std::vector<std::string> ClientRun(const std::string& options, const std::string& calls);

// The lines of a trace.
std::vector<nlohmann::json> Records(const std::string& text);

}  // namespace desk_test

#endif  // TESTS_DESK_TOOL_H
