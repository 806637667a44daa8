#include "tests/desk/tool.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace desk_test {
namespace {

std::vector<std::string> Joined(std::vector<std::string> first, const std::vector<std::string>& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

}  // namespace

Directory::Directory() {
  char path[] = "/tmp/desk-XXXXXX";
  EXPECT_NE(mkdtemp(path), nullptr);
  path_ = path;
}

Directory::~Directory() {
  for (const std::string& name : Contents()) {
    EXPECT_NE(name.substr(0, 5), "rolu-") << "a board left its directory behind";
  }
  std::filesystem::remove_all(path_);
}

std::string Directory::Write(const std::string& name, const std::string& text) const {
  std::string path = path_ + '/' + name;
  std::ofstream(path) << text;
  return path;
}

std::string Directory::Read(const std::string& name) const {
  std::ifstream file(path_ + '/' + name);
  return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<std::string> Directory::Contents() const {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(path_))
    names.push_back(entry.path().filename());
  std::sort(names.begin(), names.end());
  return names;
}

Tool::Tool(const Directory& directory, const std::vector<std::string>& arguments) {
  int output[2];
  int errors[2];
  EXPECT_EQ(pipe2(output, O_CLOEXEC), 0);
  EXPECT_EQ(pipe2(errors, O_CLOEXEC), 0);
  output_fd_ = output[0];
  errors_fd_ = errors[0];
  std::vector<std::string> words = Joined({ROLU_SIM}, arguments);
  std::vector<char*> pointers;
  for (std::string& word : words) pointers.push_back(word.data());
  pointers.push_back(nullptr);
  std::string temporary = "TMPDIR=" + directory.path();
  std::string path = "PATH=/usr/bin:/bin";
  char* environment[] = {temporary.data(), path.data(), nullptr};
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, output[1], STDOUT_FILENO);
  posix_spawn_file_actions_adddup2(&actions, errors[1], STDERR_FILENO);
  EXPECT_EQ(posix_spawn(&process_, ROLU_SIM, &actions, nullptr, pointers.data(), environment), 0);
  posix_spawn_file_actions_destroy(&actions);
  close(output[1]);
  close(errors[1]);
}

Tool::~Tool() {
  if (process_ > 0) {
    Send(SIGTERM);
    Wait();
  }
  close(output_fd_);
  close(errors_fd_);
}

void Tool::Send(int signal) const {
  kill(process_, signal);
}

bool Tool::ReadSome(std::chrono::milliseconds patience) {
  std::array<pollfd, 2> sources{{{output_fd_, POLLIN, 0}, {errors_fd_, POLLIN, 0}}};
  poll(sources.data(), sources.size(), static_cast<int>(patience.count()));
  int ended = 0;
  for (const pollfd& source : sources) {
    if (source.revents == 0) continue;
    char buffer[4096];
    const ssize_t length = read(source.fd, buffer, sizeof buffer);
    if (length > 0) {
      (source.fd == output_fd_ ? output_ : errors_).append(buffer, static_cast<std::size_t>(length));
    } else {
      ++ended;
    }
  }
  return ended < 2;
}

bool Tool::WaitForOutput(const std::string& text, std::chrono::milliseconds patience) {
  const auto deadline = std::chrono::steady_clock::now() + patience;
  while (output_.find(text) == std::string::npos && errors_.find(text) == std::string::npos) {
    const auto left =
        std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
    if (left.count() <= 0 || !ReadSome(left)) return false;
  }
  return true;
}

int Tool::Wait() {
  while (ReadSome()) continue;
  int status = 0;
  EXPECT_EQ(waitpid(process_, &status, 0), process_);
  process_ = -1;
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

Result RunTool(const Directory& directory, const std::vector<std::string>& arguments) {
  Tool tool(directory, arguments);
  const int status = tool.Wait();
  return {status, tool.output(), tool.errors()};
}

ServedBoard::ServedBoard(const Directory& directory, const std::vector<std::string>& options)
    : directory_(directory),
      path_(directory.path() + "/board"),
      tool_(directory, Joined(Joined({"serve"}, options), {path_})) {
  EXPECT_TRUE(tool_.WaitForOutput("rolu-sim join")) << tool_.errors();
}

Result ServedBoard::Ctl(const std::vector<std::string>& words) const {
  return RunTool(directory_, Joined({"ctl", "--board", path_}, words));
}

Result ServedBoard::Client(const std::vector<std::string>& calls) const {
  return RunTool(directory_, Joined({"join", path_, "--"}, ClientCommand(calls)));
}

nlohmann::json ServedBoard::Get(const std::string& reading) const {
  return Ctl({"get", reading, "--json"}).Json().at(reading);
}

std::vector<std::string> ClientCommand(const std::vector<std::string>& calls) {
  return Joined({DESK_CLIENT}, calls);
}

}  // namespace desk_test
