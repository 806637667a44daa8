// Looking around: directories, and what a path is made of.

#include <dirent.h>
#include <errno.h>
#include <stdlib.h>
#include <string.h>
#include <sys/types.h>
#include <sys/xattr.h>
#include <unistd.h>

#include "simulator/devices/board_paths.h"
#include "simulator/preload/exported.h"
#include "simulator/preload/next_call.h"
#include "simulator/preload/redirection.h"

namespace rolu_sim {
namespace {

template <typename Entry>
using ScandirCall = int (*)(const char*, Entry***, int (*)(const Entry*),
                            int (*)(const Entry**, const Entry**));
using AttributeCall = ssize_t (*)(const char*, const char*, void*, size_t);

NextCall<DIR* (*)(const char*)> next_opendir("opendir");
NextCall<ScandirCall<dirent>> next_scandir("scandir");
NextCall<ScandirCall<dirent64>> next_scandir64("scandir64");
NextCall<int (*)(const char*)> next_chdir("chdir");
NextCall<char* (*)(char*, size_t)> next_getcwd("getcwd");
NextCall<char* (*)(char*, size_t, size_t)> next_getcwd_chk("__getcwd_chk");
NextCall<char* (*)(const char*, char*)> next_realpath("realpath");
NextCall<char* (*)(const char*, char*, size_t)> next_realpath_chk("__realpath_chk");
NextCall<ssize_t (*)(const char*, char*, size_t)> next_readlink("readlink");
NextCall<ssize_t (*)(const char*, char*, size_t, size_t)> next_readlink_chk("__readlink_chk");
NextCall<ssize_t (*)(int, const char*, char*, size_t)> next_readlinkat("readlinkat");
NextCall<ssize_t (*)(int, const char*, char*, size_t, size_t)> next_readlinkat_chk("__readlinkat_chk");
NextCall<AttributeCall> next_getxattr("getxattr");
NextCall<AttributeCall> next_lgetxattr("lgetxattr");

// The result of `next`, called with the path at which the system finds `path`; `failure` when it does not.
template <typename Result, typename Function, typename... Rest>
Result CallAt(NextCall<Function>& next, Result failure, const char* path, Rest... rest) {
  Place place(path);
  const char* const system_path = place.SystemPath();
  return system_path == nullptr ? failure : next.get()(system_path, rest...);
}

template <typename Function, typename... Rest>
ssize_t CallFrom(NextCall<Function>& next, int directory, const char* path, Rest... rest) {
  Place place(path, directory);
  const char* const system_path = place.SystemPath();
  return system_path == nullptr ? -1 : next.get()(directory, system_path, rest...);
}

// A directory that is shown goes by its name on the board.
char* AsOnBoard(char* path) {
  const PathInRoot shown(kShownDirectory);
  const size_t length = strlen(shown.get());
  if (path == nullptr || length == 0) return path;
  if (strncmp(path, shown.get(), length) != 0 || path[length] != '/') return path;
  return static_cast<char*>(memmove(path, path + length, strlen(path + length) + 1));
}

// The real path of what is the board's: it has no links. `resolved` may be null.
char* RealPathOnBoard(Place& place, char* resolved) {
  const char* const system_path = place.SystemPath();
  if (system_path == nullptr || access(system_path, F_OK) != 0) return nullptr;
  const char* const path = place.board_path();
  return resolved == nullptr ? strdup(path) : static_cast<char*>(memcpy(resolved, path, strlen(path) + 1));
}

}  // namespace
}  // namespace rolu_sim

using rolu_sim::CallAt;
using rolu_sim::CallFrom;
using rolu_sim::Place;
using rolu_sim::Target;

extern "C" {

ROLU_SIM_EXPORTED DIR* opendir(const char* path) {
  return CallAt<DIR*>(rolu_sim::next_opendir, nullptr, path);
}

ROLU_SIM_EXPORTED int scandir(const char* path, dirent*** entries, int (*chosen)(const dirent*),
                              int (*order)(const dirent**, const dirent**)) {
  return CallAt(rolu_sim::next_scandir, -1, path, entries, chosen, order);
}

ROLU_SIM_EXPORTED int scandir64(const char* path, dirent64*** entries, int (*chosen)(const dirent64*),
                                int (*order)(const dirent64**, const dirent64**)) {
  return CallAt(rolu_sim::next_scandir64, -1, path, entries, chosen, order);
}

ROLU_SIM_EXPORTED int chdir(const char* path) noexcept {
  return CallAt(rolu_sim::next_chdir, -1, path);
}

ROLU_SIM_EXPORTED char* getcwd(char* buffer, size_t size) noexcept {
  return rolu_sim::AsOnBoard(rolu_sim::next_getcwd.get()(buffer, size));
}

ROLU_SIM_EXPORTED char* realpath(const char* path, char* resolved) noexcept {
  Place place(path);
  if (place.target() != Target::kUntouched) return rolu_sim::RealPathOnBoard(place, resolved);
  return rolu_sim::next_realpath.get()(place.SystemPath(), resolved);
}

ROLU_SIM_EXPORTED char* canonicalize_file_name(const char* path) noexcept {
  return realpath(path, nullptr);
}

ROLU_SIM_EXPORTED ssize_t readlink(const char* path, char* buffer, size_t size) noexcept {
  return CallAt<ssize_t>(rolu_sim::next_readlink, -1, path, buffer, size);
}

ROLU_SIM_EXPORTED ssize_t readlinkat(int directory, const char* path, char* buffer, size_t size) noexcept {
  return CallFrom(rolu_sim::next_readlinkat, directory, path, buffer, size);
}

// What the calls become in a fortified program; the next ones end the program on an overflow.

ROLU_SIM_EXPORTED char* __getcwd_chk(char* buffer, size_t size, size_t buffer_size) noexcept {
  return rolu_sim::AsOnBoard(rolu_sim::next_getcwd_chk.get()(buffer, size, buffer_size));
}

ROLU_SIM_EXPORTED char* __realpath_chk(const char* path, char* resolved, size_t buffer_size) noexcept {
  Place place(path);
  if (place.target() != Target::kUntouched && buffer_size >= PATH_MAX) {
    return rolu_sim::RealPathOnBoard(place, resolved);
  }
  return rolu_sim::next_realpath_chk.get()(place.SystemPath(), resolved, buffer_size);
}

ROLU_SIM_EXPORTED ssize_t __readlink_chk(const char* path, char* buffer, size_t size,
                                         size_t buffer_size) noexcept {
  return CallAt<ssize_t>(rolu_sim::next_readlink_chk, -1, path, buffer, size, buffer_size);
}

ROLU_SIM_EXPORTED ssize_t __readlinkat_chk(int directory, const char* path, char* buffer, size_t size,
                                           size_t buffer_size) noexcept {
  return CallFrom(rolu_sim::next_readlinkat_chk, directory, path, buffer, size, buffer_size);
}

// ls -l asks for access lists.

ROLU_SIM_EXPORTED ssize_t getxattr(const char* path, const char* name, void* value, size_t size) noexcept {
  return CallAt<ssize_t>(rolu_sim::next_getxattr, -1, path, name, value, size);
}

ROLU_SIM_EXPORTED ssize_t lgetxattr(const char* path, const char* name, void* value, size_t size) noexcept {
  return CallAt<ssize_t>(rolu_sim::next_lgetxattr, -1, path, name, value, size);
}

}  // extern "C"
