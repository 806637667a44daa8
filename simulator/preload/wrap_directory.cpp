// Calls that look around: directories, real paths and links, and the names of the kernel.

#include <dirent.h>
#include <fcntl.h>
#include <limits.h>
#include <stdlib.h>
#include <string.h>
#include <sys/types.h>
#include <sys/utsname.h>
#include <sys/xattr.h>
#include <unistd.h>

#include "simulator/devices/board_paths.h"
#include "simulator/preload/board_client.h"
#include "simulator/preload/next_call.h"
#include "simulator/preload/redirection.h"

namespace rolu_sim {
namespace {

// Calls `next` with the system's path for `path`. Returns `failure` when there is none.
template <typename Call, typename Result, typename... Rest>
Result CallAt(Call next, Result failure, const char* path, Rest... rest) {
  Place place(path);
  const char* const system_path = place.SystemPath();
  return system_path == nullptr ? failure : next(system_path, rest...);
}

// Gives a shown directory its name on the board.
char* AsOnBoard(char* path) {
  const PathInRoot shown(kShownDirectory);
  const size_t length = strlen(shown.get());
  if (path == nullptr || length == 0) return path;
  if (strncmp(path, shown.get(), length) != 0 || path[length] != '/') return path;
  return static_cast<char*>(memmove(path, path + length, strlen(path + length) + 1));
}

// The real path of a directory or node of the board, which has no links. `resolved` may be null.
char* RealPathOnBoard(Place& place, char* resolved) {
  const char* const system_path = place.SystemPath();
  if (system_path == nullptr || access(system_path, F_OK) != 0) return nullptr;
  const char* const path = place.board_path();
  return resolved == nullptr ? strdup(path) : static_cast<char*>(memcpy(resolved, path, strlen(path) + 1));
}

}  // namespace
}  // namespace rolu_sim

using namespace rolu_sim;

#pragma GCC visibility push(default)
extern "C" {

DIR* opendir(const char* path) {
  return CallAt(Next<opendir>("opendir"), static_cast<DIR*>(nullptr), path);
}

int scandir(const char* path, dirent*** entries, int (*chosen)(const dirent*),
            int (*order)(const dirent**, const dirent**)) {
  return CallAt(Next<scandir>("scandir"), -1, path, entries, chosen, order);
}

int scandir64(const char* path, dirent64*** entries, int (*chosen)(const dirent64*),
              int (*order)(const dirent64**, const dirent64**)) {
  return CallAt(Next<scandir64>("scandir64"), -1, path, entries, chosen, order);
}

int chdir(const char* path) noexcept {
  return CallAt(Next<chdir>("chdir"), -1, path);
}

char* getcwd(char* buffer, size_t size) noexcept {
  return AsOnBoard(Next<getcwd>("getcwd")(buffer, size));
}

char* realpath(const char* path, char* resolved) noexcept {
  Place place(path);
  if (place.target() != Target::kUntouched) return RealPathOnBoard(place, resolved);
  return Next<realpath>("realpath")(place.SystemPath(), resolved);
}

char* canonicalize_file_name(const char* path) noexcept {
  return realpath(path, nullptr);
}

ssize_t readlinkat(int directory, const char* path, char* buffer, size_t size) noexcept {
  Place place(path, directory);
  const char* const system_path = place.SystemPath();
  return system_path == nullptr ? -1 : Next<readlinkat>("readlinkat")(directory, system_path, buffer, size);
}

ssize_t readlink(const char* path, char* buffer, size_t size) noexcept {
  return readlinkat(AT_FDCWD, path, buffer, size);
}

// The calls of a fortified program.

char* __getcwd_chk(char* buffer, size_t size, size_t buffer_size) noexcept {
  return getcwd(buffer, Checked(size, buffer_size));
}

char* __realpath_chk(const char* path, char* resolved, size_t buffer_size) noexcept {
  Checked(PATH_MAX, buffer_size);
  return realpath(path, resolved);
}

ssize_t __readlink_chk(const char* path, char* buffer, size_t size, size_t buffer_size) noexcept {
  return readlinkat(AT_FDCWD, path, buffer, Checked(size, buffer_size));
}

ssize_t __readlinkat_chk(int directory, const char* path, char* buffer, size_t size,
                         size_t buffer_size) noexcept {
  return readlinkat(directory, path, buffer, Checked(size, buffer_size));
}

// ls -l asks for access control lists.

ssize_t getxattr(const char* path, const char* name, void* value, size_t size) noexcept {
  return CallAt(Next<getxattr>("getxattr"), ssize_t{-1}, path, name, value, size);
}

ssize_t lgetxattr(const char* path, const char* name, void* value, size_t size) noexcept {
  return CallAt(Next<lgetxattr>("lgetxattr"), ssize_t{-1}, path, name, value, size);
}

// Gives the board's names while a board is attached.
int uname(utsname* names) noexcept {
  const int result = Next<uname>("uname")(names);
  utsname board{};
  if (result != 0 || BoardRootPath() == nullptr) return result;
  if (AskBoard(DeviceRequest::kUname, "", &board, sizeof board) < 0) return result;
  memcpy(names->machine, board.machine, sizeof names->machine);
  memcpy(names->release, board.release, sizeof names->release);
  memcpy(names->version, board.version, sizeof names->version);
  return result;
}

// preloaded.cpp looks for this function to find out whether the object is loaded.
int rolu_sim_preload_version() {
  return 1;
}

}  // extern "C"
#pragma GCC visibility pop
