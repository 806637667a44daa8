#include "tests/support/process.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <stdlib.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <utility>

namespace rolu_test {
namespace {

using Clock = std::chrono::steady_clock;

struct Pipe {
  int ends[2];
  Pipe() { EXPECT_EQ(pipe2(ends, O_CLOEXEC), 0); }
};

std::vector<char*> Pointers(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

}  // namespace

Process::Process(std::vector<std::string> words, const std::string& input,
                 std::vector<std::string> environment) {
  const Pipe in;
  EXPECT_EQ(write(in.ends[1], input.data(), input.size()), static_cast<ssize_t>(input.size()));
  close(in.ends[1]);
  Start(words, in.ends[0], environment);
  close(in.ends[0]);
}

Process::Process(std::vector<std::string> words, int input) {
  std::vector<std::string> environment;
  Start(words, input, environment);
}

void Process::Start(std::vector<std::string>& words, int input, std::vector<std::string>& environment) {
  const Pipe out;
  const Pipe err;
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, input, STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&actions, out.ends[1], STDOUT_FILENO);
  posix_spawn_file_actions_adddup2(&actions, err.ends[1], STDERR_FILENO);
  const std::vector<char*> arguments = Pointers(words);
  const std::vector<char*> variables = Pointers(environment);
  EXPECT_EQ(posix_spawnp(&pid_, arguments[0], &actions, nullptr, arguments.data(),
                         environment.empty() ? environ : variables.data()),
            0);
  posix_spawn_file_actions_destroy(&actions);
  close(out.ends[1]);
  close(err.ends[1]);
  out_pipe_ = out.ends[0];
  err_pipe_ = err.ends[0];
}

Process::~Process() {
  if (pid_ > 0) {
    kill(pid_, SIGKILL);
    WaitStatusOf(pid_);
  }
  for (const int end : {out_pipe_, err_pipe_}) {
    if (end >= 0) close(end);
  }
}

// Returns false when both streams have ended, or after the deadline.
bool Process::ReadSome(Clock::time_point deadline) {
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
  std::array<pollfd, 2> streams = {{{out_pipe_, POLLIN, 0}, {err_pipe_, POLLIN, 0}}};
  if (left.count() <= 0 || (out_pipe_ < 0 && err_pipe_ < 0)) return false;
  if (poll(streams.data(), streams.size(), static_cast<int>(left.count())) <= 0) return false;
  const auto take = [](const pollfd& stream, int& descriptor, std::string& text) {
    if (stream.revents == 0) return;
    std::array<char, 4096> buffer{};
    const ssize_t length = read(descriptor, buffer.data(), buffer.size());
    if (length > 0) {
      text.append(buffer.data(), static_cast<size_t>(length));
    } else {
      close(descriptor);
      descriptor = -1;
    }
  };
  take(streams[0], out_pipe_, out_);
  take(streams[1], err_pipe_, err_);
  return true;
}

bool Process::WaitFor(const std::string& stream, const std::string& text, size_t from,
                      std::chrono::milliseconds patience) {
  const Clock::time_point deadline = Clock::now() + patience;
  while (stream.find(text, from) == std::string::npos) {
    if (!ReadSome(deadline)) return false;
  }
  return true;
}

void Process::Signal(int number) const {
  EXPECT_EQ(kill(pid_, number), 0);
}

void Process::StopReading() {
  close(out_pipe_);
  out_pipe_ = -1;
}

int Process::Wait() {
  const Clock::time_point deadline = Clock::now() + kGenerous;
  while (ReadSome(deadline)) continue;
  if (Clock::now() >= deadline) {
    ADD_FAILURE() << "the program did not end; it printed: " << out_ << err_;
    return -1;
  }
  return WaitStatusOf(std::exchange(pid_, -1));
}

Ended Process::WaitForAll() {
  return {Wait(), out_, err_};
}

std::vector<std::string> Words(const std::string& command_line) {
  std::istringstream stream(command_line);
  return {std::istream_iterator<std::string>(stream), {}};
}

std::vector<std::string> Joined(std::vector<std::string> first, const std::vector<std::string>& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

TemporaryDirectory::TemporaryDirectory() {
  EXPECT_NE(mkdtemp(path_.data()), nullptr);
}

TemporaryDirectory::~TemporaryDirectory() {
  std::filesystem::remove_all(path_);
}

std::string TemporaryDirectory::Write(const std::string& name, const std::string& text) const {
  WriteFile(File(name), text);
  return File(name);
}

std::vector<std::string> TemporaryDirectory::Names() const {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(path_))
    names.push_back(entry.path().filename());
  std::sort(names.begin(), names.end());
  return names;
}

std::string ReadFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

void WriteFile(const std::string& path, const std::string& text) {
  std::ofstream(path, std::ios::binary) << text;
}

}  // namespace rolu_test
