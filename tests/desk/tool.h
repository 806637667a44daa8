#pragma once

#include <sys/types.h>

#include <chrono>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace desk_test {

// A directory of the test's own, in which rolu-sim makes its boards; at the end of the test nothing
// may be left of them.
class Directory {
 public:
  Directory();
  ~Directory();
  Directory(const Directory&) = delete;
  Directory& operator=(const Directory&) = delete;

  const std::string& path() const { return path_; }
  std::string Write(const std::string& name, const std::string& text) const;
  std::string Read(const std::string& name) const;

  // Names of what is in it, in alphabetical order.
  std::vector<std::string> Contents() const;

 private:
  std::string path_;
};

// rolu-sim in a process of its own, that makes its boards in `directory`. It is killed if it still
// runs at the end.
class Tool {
 public:
  Tool(const Directory& directory, const std::vector<std::string>& arguments);
  ~Tool();
  Tool(const Tool&) = delete;
  Tool& operator=(const Tool&) = delete;

  pid_t process() const { return process_; }
  void Send(int signal) const;

  // Waits for `text` on one of the outputs; false when they end without it, or after `patience`.
  bool WaitForOutput(const std::string& text, std::chrono::milliseconds patience = std::chrono::minutes(1));

  // Waits for the end; the status as a shell has it.
  int Wait();

  const std::string& output() const { return output_; }
  const std::string& errors() const { return errors_; }

 private:
  // False when both outputs are at their end.
  bool ReadSome(std::chrono::milliseconds patience = std::chrono::minutes(1));

  int output_fd_ = -1;
  int errors_fd_ = -1;
  pid_t process_ = -1;
  std::string output_;
  std::string errors_;
};

// What a finished run of rolu-sim left.
struct Result {
  int status;
  std::string output;
  std::string errors;

  nlohmann::json Json() const { return nlohmann::json::parse(output); }
};
Result RunTool(const Directory& directory, const std::vector<std::string>& arguments);

// A board that is up at directory.path() + "/board".
class ServedBoard {
 public:
  explicit ServedBoard(const Directory& directory, const std::vector<std::string>& options = {});

  Result Ctl(const std::vector<std::string>& words) const;
  // A program (see desk_client.cpp) on the board.
  Result Client(const std::vector<std::string>& calls) const;
  nlohmann::json Get(const std::string& reading) const;

  Tool& tool() { return tool_; }
  const std::string& path() const { return path_; }

 private:
  const Directory& directory_;
  std::string path_;
  Tool tool_;
};

// The words of a run of desk_client: its path and the calls.
std::vector<std::string> ClientCommand(const std::vector<std::string>& calls);

}  // namespace desk_test
