// Looks at this process from outside, and waits until it is in some state.
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

// Even on a heavily loaded machine, anything that happens at all happens within this time.
inline constexpr std::chrono::seconds kGenerous{20};

// Waits for a condition that has no event. Returns false when it does not become true in a generous time.
template <typename Condition>
bool WaitUntil(Condition condition) {
  const auto end = std::chrono::steady_clock::now() + kGenerous;
  while (!condition()) {
    if (std::chrono::steady_clock::now() > end) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return true;
}

// Waits for a child's end. Returns the exit status, or 128 plus the number of the signal that ended it.
inline int WaitStatusOf(pid_t child) {
  int status = 0;
  if (waitpid(child, &status, 0) != child) return -1;
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

// The open files and the threads of this process.
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
      // By path: for the thread sanitizer fstat races with a close of the descriptor in another thread.
      if (closed_meanwhile || stat(descriptor.path().c_str(), &status) != 0) continue;
      // Another process may rename or delete an open file, as ctest does with the log that tests inherit.
      const std::string identity = std::to_string(status.st_dev) + ':' + std::to_string(status.st_ino);
      OpenFile& file = files[S_ISREG(status.st_mode) ? identity : name];
      file.name = name;
      ++file.count;
    }
  }

  // The key is the part that does not change while a file, a pipe or a device is open.
  std::map<std::string, OpenFile> files;
  std::ptrdiff_t threads = std::distance(std::filesystem::directory_iterator("/proc/self/task"), {});
};

// The files and threads that exist now and did not exist before, in words; empty when there are none. It
// ignores anything that existed only at the earlier moment: a sanitizer's runtime opens a pipe to look at
// memory, in any thread and at any time.
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

// The same, for whatever is still there after a generous time.
inline std::string LeftSince(const ProcessState& before) {
  std::string left;
  WaitUntil([&] { return (left = MoreThanBefore(before)).empty(); });
  return left;
}

#endif  // TESTS_SUPPORT_PROCESS_STATE_H
