#include "simulator/program/served_directory.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "simulator/board_root.h"
#include "simulator/control/parameter.h"
#include "simulator/system_error.h"

namespace rolu_sim {
namespace {

UniqueFd OpenDirectory(const std::string& path) {
  return UniqueFd(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
}

}  // namespace

ServedDirectory::ServedDirectory(std::string path) : path_(std::move(path)) {
  if (path_.size() > BoardRoot::kMaxPathLength) {
    throw UsageError(fmt::format("{} is too long a path for the board's sockets: {} characters, at most {}",
                                 path_, path_.size(), BoardRoot::kMaxPathLength));
  }
  MakeAndHold();
  if (!BoardRoot::HoldsOnlyParts(path_)) throw UsageError(path_ + " is not an empty directory");
  BoardRoot::RemoveParts(path_);
}

ServedDirectory::~ServedDirectory() {
  if (is_made_here_) rmdir(path_.c_str());
}

void ServedDirectory::MakeAndHold() {
  is_made_here_ = mkdir(path_.c_str(), 0700) == 0;
  if (!is_made_here_ && errno != EEXIST) ThrowErrno("making a directory for the board, " + path_);
  held_ = OpenDirectory(path_);
  if (!held_ && errno == ENOTDIR) throw UsageError(path_ + " is not an empty directory");
  if (!held_) ThrowErrno("opening " + path_);
  if (flock(held_.get(), LOCK_EX | LOCK_NB) == 0) return;
  if (errno == EWOULDBLOCK) throw UsageError(fmt::format("a board is up at {} already", path_));
  ThrowErrno("locking " + path_);
}

BoardEnd::BoardEnd(const std::string& board_directory) : directory_(OpenDirectory(board_directory)) {}

void BoardEnd::Wait() const {
  while (flock(directory_.get(), LOCK_SH) != 0 && errno == EINTR) continue;
}

}  // namespace rolu_sim
