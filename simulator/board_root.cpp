#include "simulator/board_root.h"

#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <filesystem>
#include <string_view>
#include <system_error>

#include "simulator/devices/board_paths.h"
#include "simulator/system_error.h"

namespace rolu_sim {
namespace {

constexpr std::string_view kNamePattern = "/rolu-XXXXXX";

constexpr std::size_t kMaxParentLength = BoardRoot::kMaxPathLength - kNamePattern.size();

// What a board has in its directory, whoever makes it.
constexpr std::array<const char*, 5> kParts = {"/proc", "/bin", kDeviceSocketName, "/control", "/wlan0-up"};

std::string ParentDirectory() {
  const char* const configured = getenv("TMPDIR");
  if (configured == nullptr || *configured != '/' || std::string_view(configured).size() > kMaxParentLength) {
    return "/tmp";
  }
  return configured;
}

}  // namespace

BoardRoot::BoardRoot(const std::string& directory)
    : path_(directory.empty() ? ParentDirectory().append(kNamePattern) : directory),
      is_private_(directory.empty()),
      owner_(getpid()) {
  if (is_private_) {
    if (mkdtemp(path_.data()) == nullptr) ThrowErrno("making a directory for the board, " + path_);
  } else {
    is_made_here_ = mkdir(path_.c_str(), 0700) == 0;
    if (!is_made_here_ && errno != EEXIST) ThrowErrno("making a directory for the board, " + path_);
  }
  // It fails for all but one of several boards that are to be in the same directory.
  const std::string first_part = path_ + kParts[0];
  if (mkdir(first_part.c_str(), 0700) != 0) ThrowErrno("making " + first_part);
  std::filesystem::create_directory(CommandDirectory());
}

BoardRoot::~BoardRoot() {
  if (getpid() != owner_) return;
  std::error_code ignored;
  if (is_private_) {
    std::filesystem::remove_all(path_, ignored);
    return;
  }
  RemoveParts(path_);
  if (is_made_here_) rmdir(path_.c_str());
}

void BoardRoot::RemoveParts(const std::string& directory) {
  std::error_code ignored;
  for (const char* const part : kParts) std::filesystem::remove_all(directory + part, ignored);
}

std::string BoardRoot::SerialLinkPath() const {
  return path_ + kSerialLinkName;
}

std::string BoardRoot::CommandDirectory() const {
  return path_ + "/bin";
}

std::string BoardRoot::DeviceSocketPath() const {
  return path_ + kDeviceSocketName;
}

void BoardRoot::LinkSerialPort(const std::string& device_path) const {
  UnlinkSerialPort();
  std::filesystem::create_symlink(device_path, SerialLinkPath());
}

void BoardRoot::UnlinkSerialPort() const {
  std::filesystem::remove(SerialLinkPath());
}

}  // namespace rolu_sim
