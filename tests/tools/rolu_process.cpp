#include "tests/tools/rolu_process.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

namespace rolu_test {
namespace {

using Clock = std::chrono::steady_clock;

struct Pipe {
  int ends[2];
  Pipe() { EXPECT_EQ(pipe2(ends, O_CLOEXEC), 0); }
};

// A shell that the library in an emulated rolu starts runs natively, and complains that it cannot load
// the board's object.
std::string WithoutEmulationNoise(const std::string& text) {
  if (Words(ROLU_EMULATOR).empty()) return text;
  std::istringstream lines(text);
  std::string rest;
  for (std::string line; std::getline(lines, line);) {
    if (line.rfind("ERROR: ld.so: ", 0) != 0) rest += line + '\n';
  }
  return rest;
}

}  // namespace

RoluProcess::RoluProcess(const std::vector<std::string>& arguments, const std::string& input) {
  const Pipe in;
  EXPECT_EQ(write(in.ends[1], input.data(), input.size()), static_cast<ssize_t>(input.size()));
  close(in.ends[1]);
  Start(arguments, in.ends[0]);
  close(in.ends[0]);
}

RoluProcess::RoluProcess(const std::vector<std::string>& arguments, int input) {
  Start(arguments, input);
}

void RoluProcess::Start(const std::vector<std::string>& arguments, int input) {
  // In a cross build the program runs under an emulator, which is given with its options.
  std::vector<std::string> words = Words(ROLU_EMULATOR);
  words.emplace_back(ROLU_PROGRAM);
  words.insert(words.end(), arguments.begin(), arguments.end());
  std::vector<char*> pointers;
  for (std::string& word : words) pointers.push_back(word.data());
  pointers.push_back(nullptr);

  const Pipe out;
  const Pipe err;
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, input, STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&actions, out.ends[1], STDOUT_FILENO);
  posix_spawn_file_actions_adddup2(&actions, err.ends[1], STDERR_FILENO);
  EXPECT_EQ(posix_spawnp(&pid_, pointers[0], &actions, nullptr, pointers.data(), environ), 0);
  posix_spawn_file_actions_destroy(&actions);
  close(out.ends[1]);
  close(err.ends[1]);
  out_pipe_ = out.ends[0];
  err_pipe_ = err.ends[0];
}

RoluProcess::~RoluProcess() {
  if (pid_ > 0) {
    kill(pid_, SIGKILL);
    waitpid(pid_, nullptr, 0);
  }
  for (const int end : {out_pipe_, err_pipe_}) {
    if (end >= 0) close(end);
  }
}

// False at the end of both streams, and after the deadline.
bool RoluProcess::ReadSome(Clock::time_point deadline) {
  const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
  std::array<pollfd, 2> streams = {{{out_pipe_, POLLIN, 0}, {err_pipe_, POLLIN, 0}}};
  if (left.count() <= 0 || (out_pipe_ < 0 && err_pipe_ < 0)) return false;
  if (poll(streams.data(), streams.size(), static_cast<int>(left.count())) <= 0) return false;
  const auto take = [](const pollfd& stream, int& descriptor, std::string& text) {
    if (stream.revents == 0) return;
    std::array<char, 4096> buffer{};
    const ssize_t length = read(descriptor, buffer.data(), buffer.size());
    if (length > 0) {
      text.append(buffer.data(), static_cast<std::size_t>(length));
    } else {
      close(descriptor);
      descriptor = -1;
    }
  };
  take(streams[0], out_pipe_, out_);
  take(streams[1], err_pipe_, err_);
  return true;
}

bool RoluProcess::WaitFor(const std::string& stream, const std::string& text, std::size_t from) {
  const Clock::time_point deadline = Clock::now() + kAmple;
  while (stream.find(text, from) == std::string::npos) {
    if (!ReadSome(deadline)) return false;
  }
  return true;
}

void RoluProcess::Signal(int number) const {
  EXPECT_EQ(kill(pid_, number), 0);
}

void RoluProcess::StopReading() {
  close(out_pipe_);
  out_pipe_ = -1;
}

int RoluProcess::Wait() {
  const Clock::time_point deadline = Clock::now() + kAmple;
  while (ReadSome(deadline)) {
  }
  if (Clock::now() >= deadline) {
    ADD_FAILURE() << "rolu did not end; it printed: " << out_ << err_;
    return -1;
  }
  int status = 0;
  EXPECT_EQ(waitpid(pid_, &status, 0), pid_);
  pid_ = -1;
  return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

Ended Rolu(const std::string& command_line, const std::string& input) {
  return Rolu(Words(command_line), input);
}

Ended Rolu(const std::vector<std::string>& arguments, const std::string& input) {
  RoluProcess rolu(arguments, input);
  const int status = rolu.Wait();
  return {status, rolu.out(), WithoutEmulationNoise(rolu.err())};
}

std::vector<std::string> Words(const std::string& command_line) {
  std::istringstream stream(command_line);
  return {std::istream_iterator<std::string>(stream), {}};
}

std::vector<std::string> RoluTest::Received(const std::string& prefix) {
  std::vector<std::string> found;
  for (const std::string& command : board.mcu().CommandsReceived()) {
    if (command.rfind(prefix, 0) == 0) found.push_back(command);
  }
  return found;
}

TemporaryDirectory::TemporaryDirectory() {
  EXPECT_NE(mkdtemp(path_.data()), nullptr);
}

TemporaryDirectory::~TemporaryDirectory() {
  std::filesystem::remove_all(path_);
}

std::vector<std::string> TemporaryDirectory::Names() const {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(path_)) {
    names.push_back(entry.path().filename());
  }
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
