// Looking at this process from outside, and waiting for it to come to a state.
#ifndef TESTS_SUPPORT_PROCESS_STATE_H
#define TESTS_SUPPORT_PROCESS_STATE_H

#include <sys/stat.h>
#include <sys/wait.h>

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <iterator>
#include <map>
#include <string>
#include <system_error>
#include <thread>

// No machine is so loaded that something which happens at all takes this long.
inline constexpr std::chrono::seconds kGenerous{20};

// Waits for what has no event of its own; false when it has not come about in a generous time.
template <typename Condition>
bool WaitUntil(Condition condition) {
  const auto end = std::chrono::steady_clock::now() + kGenerous;
  while (!condition()) {
    if (std::chrono::steady_clock::now() > end) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return true;
}

// Waits for a child's end: its exit status, or 128 and the number of the signal that ended it.
inline int WaitStatusOf(pid_t child) {
  int status = 0;
  if (waitpid(child, &status, 0) != child) return -1;
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

// What is open and what runs in this process.
struct ProcessState {
  struct OpenFile {
    std::string name;
    std::ptrdiff_t count = 0;
  };

  ProcessState() {
    for (const auto& descriptor : std::filesystem::directory_iterator("/proc/self/fd")) {
      std::error_code closed_meanwhile;
      const std::string name = std::filesystem::read_symlink(descriptor.path(), closed_meanwhile).string();
      struct stat status {};
      if (closed_meanwhile || fstat(std::stoi(descriptor.path().filename()), &status) != 0) continue;
      // Others may rename and delete a file while it is open, as ctest does with the log that tests inherit.
      const std::string identity = std::to_string(status.st_dev) + ':' + std::to_string(status.st_ino);
      OpenFile& file = files[S_ISREG(status.st_mode) ? identity : name];
      file.name = name;
      ++file.count;
    }
  }

  // By what stays the same for a file, a pipe, a device while it is open.
  std::map<std::string, OpenFile> files;
  std::ptrdiff_t threads = std::distance(std::filesystem::directory_iterator("/proc/self/task"), {});
};

// What is open now and was not before, and how many threads more there are, in words; empty when all
// that has been opened and started is gone again. What was there before for a moment only does not
// count: the runtime of a sanitizer opens a pipe to look at memory, in any thread and at any time.
inline std::string MoreThanBefore(const ProcessState& before) {
  const ProcessState now;
  std::string more;
  for (const auto& [identity, file] : now.files) {
    const auto found = before.files.find(identity);
    const std::ptrdiff_t left = file.count - (found == before.files.end() ? 0 : found->second.count);
    if (left > 0) more += std::to_string(left) + " of " + file.name + "; ";
  }
  if (now.threads > before.threads) more += std::to_string(now.threads - before.threads) + " threads; ";
  return more;
}

// The same, when it has not gone in a generous time.
inline std::string LeftSince(const ProcessState& before) {
  std::string left;
  WaitUntil([&] { return (left = MoreThanBefore(before)).empty(); });
  return left;
}

#endif  // TESTS_SUPPORT_PROCESS_STATE_H
