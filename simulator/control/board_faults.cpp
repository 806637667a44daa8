#include "simulator/control/board_faults.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <string_view>

#include "simulator/control/board_files.h"
#include "simulator/control/parameter.h"

namespace rolu_sim {
namespace {

constexpr std::string_view kSerial = "serial";
constexpr char kMissing[] = "missing";
constexpr char kHangUp[] = "hang-up";

struct ErrnoName {
  std::string_view name;
  int number;
};
constexpr std::array<ErrnoName, 9> kErrnoNames = {{{"EACCES", EACCES},
                                                   {"EBUSY", EBUSY},
                                                   {"EINVAL", EINVAL},
                                                   {"EIO", EIO},
                                                   {"ENODEV", ENODEV},
                                                   {"ENXIO", ENXIO},
                                                   {"EPERM", EPERM},
                                                   {"EREMOTEIO", EREMOTEIO},
                                                   {"ETIMEDOUT", ETIMEDOUT}}};

int ErrnoOf(std::string_view name) {
  return std::find_if(kErrnoNames.begin(), kErrnoNames.end(),
                      [&](const ErrnoName& entry) { return entry.name == name; })
      ->number;
}

}  // namespace

std::vector<std::string> ErrnoNames() {
  std::vector<std::string> names;
  names.reserve(kErrnoNames.size());
  for (const ErrnoName& entry : kErrnoNames) names.emplace_back(entry.name);
  return names;
}

// The device's name may soon be another pseudo-terminal's: nothing leads there any more.
void BoardFaults::HangUp() {
  board_.RemoveSerialDevice();
  board_.mcu().HangUp();
  port_ = kHangUp;
}

void BoardFaults::RemoveFile(const std::string& file) {
  if (file != kSerial) {
    files_[{file, kMissing}] = "";
    SetFileFaults(file);
  } else if (port_.empty()) {
    board_.RemoveSerialDevice();
    port_ = kMissing;
  }
}

void BoardFaults::FailFile(const std::string& file, const std::string& operation, const std::string& error) {
  if (file == kSerial) throw UsageError("the serial port can only be missing, or hung up");
  files_[{file, operation}] = error;
  SetFileFaults(file);
}

void BoardFaults::RefuseAddress(std::uint8_t address, const std::string& stage, const std::string& error) {
  addresses_[{address, stage}] = error;
  Refuse(address, stage, ErrnoOf(error));
}

void BoardFaults::Replug() {
  const bool is_there = std::filesystem::exists(board_.root().SerialLinkPath());
  if (!is_there) board_.ReplugSerialPort();
  port_.clear();
}

void BoardFaults::EndAll() {
  for (const auto& [fault, error] : std::exchange(files_, {})) SetFileFaults(fault.first);
  for (const auto& [fault, error] : std::exchange(addresses_, {})) Refuse(fault.first, fault.second, 0);
  Replug();
}

std::vector<Json> BoardFaults::Present() const {
  std::vector<Json> faults;
  if (port_ == kHangUp) faults.push_back({{"fault", kHangUp}});
  if (port_ == kMissing) faults.push_back({{"fault", kMissing}, {"file", kSerial}});
  for (const auto& [fault, error] : files_) {
    const auto& [file, operation] = fault;
    if (operation == kMissing) {
      faults.push_back({{"fault", kMissing}, {"file", file}});
    } else {
      faults.push_back({{"fault", "file"}, {"file", file}, {"operation", operation}, {"error", error}});
    }
  }
  for (const auto& [fault, error] : addresses_) {
    const auto& [address, stage] = fault;
    faults.push_back({{"fault", "i2c"},
                      {"address", fmt::format("0x{:02X}", address)},
                      {"stage", stage},
                      {"error", error}});
  }
  return faults;
}

void BoardFaults::SetFileFaults(const std::string& file) {
  const auto error_of = [&](const char* operation) {
    const auto found = files_.find({file, operation});
    return found == files_.end() ? 0 : ErrnoOf(found->second);
  };
  DeviceFaults faults;
  faults.missing = files_.count({file, kMissing}) != 0;
  faults.open_errno = error_of("open");
  faults.read_errno = error_of("read");
  faults.write_errno = error_of("write");
  faults.ioctl_errno = error_of("ioctl");
  board_.devices().SetFaults(BoardFilePath(file), faults);
}

void BoardFaults::Refuse(std::uint8_t address, const std::string& stage, int error) {
  if (stage == "select") {
    board_.i2c().RefuseSelection(address, error);
  } else {
    board_.i2c().RefuseTransfers(address, error);
  }
}

}  // namespace rolu_sim
