#include "simulator/devices/board_root.h"

#include <fcntl.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <iterator>
#include <string_view>
#include <system_error>
#include <vector>

#include "simulator/devices/board_paths.h"
#include "simulator/system/system_error.h"
#include "simulator/system/unique_fd.h"

namespace rolu_sim {
namespace {

constexpr char kObjectName[] = "librolu-sim-preload.so";
constexpr std::string_view kNamePattern = "/rolu-XXXXXX";

constexpr std::size_t kMaxParentLength = BoardRoot::kMaxPathLength - kNamePattern.size();

struct Part {
  const char* name;
  std::filesystem::file_type type;
};

// The parts that any board makes in its directory. The content of a directory stands before the directory.
using std::filesystem::file_type;
constexpr Part kParts[] = {
    {kSerialLinkName, file_type::symlink},   {"/proc", file_type::directory},
    {"/bin/ifconfig", file_type::regular},   {kCommandDirectoryName, file_type::directory},
    {kDeviceSocketName, file_type::socket},  {kControlSocketName, file_type::socket},
    {kWirelessStateName, file_type::regular}};

// Without symbolic links: the preloaded object compares this path with a program's working directory.
std::string ParentDirectory() {
  const char* const configured = getenv("TMPDIR");
  if (configured == nullptr || *configured != '/') return "/tmp";
  const std::string directory = std::filesystem::weakly_canonical(configured);
  return directory.size() > kMaxParentLength ? "/tmp" : directory;
}

bool IsWithin(const std::string& name, const std::string& directory) {
  return name == directory || name.starts_with(directory + '/');
}

// Whether the entry belongs to the directories that are shown, or to the links to the preloaded objects.
bool IsInTree(const std::string& name, const std::filesystem::directory_entry& entry) {
  std::error_code failed;
  const std::filesystem::file_status status = entry.symlink_status(failed);
  if (IsWithin(name, kObjectDirectory))
    return is_directory(status) || (is_symlink(status) && entry.path().filename() == kObjectName);
  return IsWithin(name, kShownDirectory) &&
         (is_directory(status) || (is_regular_file(status) && entry.file_size(failed) == 0));
}

// Removes what is in these trees of a board at `directory`, and nothing that someone else put there. Goes by
// whole paths, the deepest first, and follows no link. A removal relative to a directory would go to the
// board when this runs in the board's own process.
void RemoveTree(const std::string& directory, const std::string& name) {
  std::error_code ignored;
  std::vector<std::filesystem::path> paths = {directory + name};
  for (std::size_t next = 0; next < paths.size(); ++next) {
    if (!is_directory(std::filesystem::symlink_status(paths[next], ignored))) continue;
    for (const auto& entry : std::filesystem::directory_iterator(paths[next], ignored))
      paths.push_back(entry);
  }
  std::reverse(paths.begin(), paths.end());
  for (const std::filesystem::path& deepest : paths) {
    const std::filesystem::directory_entry entry(deepest, ignored);
    if (IsInTree(deepest.string().substr(directory.size()), entry)) std::filesystem::remove(deepest, ignored);
  }
}

}  // namespace

BoardRoot::BoardRoot(const std::string& directory)
    : path_(directory.empty() ? ParentDirectory().append(kNamePattern) : directory),
      is_private_(directory.empty()),
      owner_(getpid()) {
  if (is_private_ && mkdtemp(path_.data()) == nullptr) {
    ThrowErrno("making a directory for the board, " + path_);
  }
  for (const std::string& part : {path_ + "/proc", CommandDirectory()}) {
    if (mkdir(part.c_str(), 0700) != 0) ThrowErrno("making " + part);
  }
}

BoardRoot::~BoardRoot() {
  if (getpid() != owner_) return;
  if (is_private_) {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  } else {
    RemoveParts(path_);
  }
}

bool BoardRoot::HoldsOnlyParts(const std::string& directory) {
  const std::filesystem::recursive_directory_iterator entries(directory);
  return std::all_of(begin(entries), end(entries), [&](const std::filesystem::directory_entry& entry) {
    const std::string name = entry.path().string().substr(directory.size());
    return IsInTree(name, entry) || std::any_of(std::begin(kParts), std::end(kParts), [&](const Part& part) {
             return part.name == name && part.type == entry.symlink_status().type();
           });
  });
}

void BoardRoot::RemoveParts(const std::string& directory) {
  for (const char* const tree : {kShownDirectory, kObjectDirectory}) RemoveTree(directory, tree);
  std::error_code ignored;
  for (const Part& part : kParts) std::filesystem::remove(directory + part.name, ignored);
}

std::string BoardRoot::SerialLinkPath() const {
  return path_ + kSerialLinkName;
}

std::string BoardRoot::CommandDirectory() const {
  return path_ + kCommandDirectoryName;
}

std::string BoardRoot::DeviceSocketPath() const {
  return path_ + kDeviceSocketName;
}

bool BoardRoot::ShowDirectory(const std::string& path, const Entries& entries) const {
  const std::filesystem::path directory = path_ + kShownDirectory + path;
  std::error_code failed;
  std::filesystem::create_directories(directory, failed);
  for (const auto& shown : std::filesystem::directory_iterator(directory, failed)) {
    if (!entries.contains(shown.path().filename()))
      RemoveTree(path_, shown.path().string().substr(path_.size()));
  }
  for (const auto& [name, is_directory] : entries) {
    if (failed) break;
    if (is_directory) {
      std::filesystem::create_directory(directory / name, failed);
    } else if (!UniqueFd(open((directory / name).c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0644))) {
      failed = std::error_code(errno, std::generic_category());
    }
  }
  return !failed;
}

void BoardRoot::LinkSerialPort(const std::string& device_path) const {
  UnlinkSerialPort();
  std::filesystem::create_symlink(device_path, SerialLinkPath());
}

void BoardRoot::UnlinkSerialPort() const {
  std::filesystem::remove(SerialLinkPath());
}

}  // namespace rolu_sim
