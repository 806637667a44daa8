#include "simulator/board_root.h"

#include <stdlib.h>
#include <unistd.h>

#include <filesystem>
#include <string_view>
#include <system_error>

#include "simulator/devices/board_paths.h"
#include "simulator/system_error.h"

namespace rolu_sim {
namespace {

constexpr std::string_view kNamePattern = "/rolu-XXXXXX";

// A socket's path ends at 108 bytes, and the board's must fit below its root.
constexpr std::size_t kMaxParentLength = 70;

std::string ParentDirectory() {
  const char* const configured = getenv("TMPDIR");
  if (configured == nullptr || *configured != '/' || std::string_view(configured).size() > kMaxParentLength) {
    return "/tmp";
  }
  return configured;
}

}  // namespace

BoardRoot::BoardRoot() : path_(ParentDirectory().append(kNamePattern)), owner_(getpid()) {
  if (mkdtemp(path_.data()) == nullptr) ThrowErrno("making a directory for the board, " + path_);
  std::filesystem::create_directory(path_ + "/proc");
  std::filesystem::create_directory(CommandDirectory());
}

BoardRoot::~BoardRoot() {
  if (getpid() != owner_) return;
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
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
