#include "simulator/desk/board_faults.h"

#include <fmt/format.h>
#include <string.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>

#include "protocol/values.h"
#include "simulator/devices/board_paths.h"
#include "simulator/devices/gpio.h"

namespace rolu_sim {
namespace {

constexpr char kSerial[] = "serial";
constexpr char kMissing[] = "missing";
constexpr char kHangUp[] = "hang-up";

// Short names and paths.
std::vector<std::pair<std::string, std::string>> Files() {
  std::vector<std::pair<std::string, std::string>> files = {
      {kSerial, kSerialPath}, {"i2c", kI2cBusPath}, {"gpio-export", kGpioExportPath}};
  for (const int line : rolu_protocol::kGpioLines) {
    for (const char* const attribute : kGpioAttributes) {
      files.emplace_back(fmt::format("gpio{}-{}", line, attribute), GpioPath(line, attribute));
    }
  }
  files.insert(files.end(), {{"backlight", kBacklightPath}, {"lux", kLuxPath}});
  return files;
}

std::string PathOf(const std::string& file) {
  const auto files = Files();
  return std::ranges::find(files, file, [](const auto& entry) { return entry.first; })->second;
}

}  // namespace

std::vector<std::string> BoardFileNames() {
  std::vector<std::string> names;
  for (const auto& [name, path] : Files()) names.push_back(name);
  return names;
}

Choices FileOperations() {
  return {{"open", &DeviceFaults::open_errno},
          {"read", &DeviceFaults::read_errno},
          {"write", &DeviceFaults::write_errno},
          {"ioctl", &DeviceFaults::ioctl_errno}};
}

Choices DeviceErrors() {
  Choices errors;
  for (const int error : {EACCES, EBUSY, EINVAL, EIO, ENODEV, ENXIO, EPERM, EREMOTEIO, ETIMEDOUT}) {
    errors.emplace_back(strerrorname_np(error), error);
  }
  return errors;
}

// The name of the hung-up device may soon belong to another pseudo-terminal, so the link to it is removed.
void BoardFaults::HangUp() {
  board_.RemoveSerialDevice();
  board_.mcu().HangUp();
  port_ = kHangUp;
}

void BoardFaults::RemoveFile(const std::string& file) {
  if (file != kSerial) {
    files_[file].missing = true;
    board_.devices().SetFaults(PathOf(file), files_[file]);
  } else if (port_.empty()) {
    board_.RemoveSerialDevice();
    port_ = kMissing;
  }
}

void BoardFaults::FailFile(const std::string& file, FileOperation operation, int error) {
  if (file == kSerial) throw UsageError("the serial port can only be missing, or hung up");
  files_[file].*operation = error;
  board_.devices().SetFaults(PathOf(file), files_[file]);
}

void BoardFaults::RefuseAddress(std::uint8_t address, const std::string& stage, int error) {
  addresses_[{address, stage}] = error;
  Refuse(address, stage, error);
}

void BoardFaults::Replug() {
  const bool is_there = std::filesystem::exists(board_.root().SerialLinkPath());
  if (!is_there) board_.ReplugSerialPort();
  port_.clear();
}

void BoardFaults::EndAll() {
  for (const auto& [file, faults] : std::exchange(files_, {})) board_.devices().SetFaults(PathOf(file), {});
  for (const auto& [fault, error] : std::exchange(addresses_, {})) Refuse(fault.first, fault.second, 0);
  Replug();
}

std::vector<Json> BoardFaults::Present() const {
  std::vector<Json> present;
  if (port_ == kHangUp) present.push_back({{"fault", kHangUp}});
  if (port_ == kMissing) present.push_back({{"fault", kMissing}, {"file", kSerial}});
  for (const auto& [file, faults] : files_) {
    if (faults.missing) present.push_back({{"fault", kMissing}, {"file", file}});
    for (const auto& [name, operation] : FileOperations()) {
      const int error = faults.*std::any_cast<FileOperation>(operation);
      if (error == 0) continue;
      present.push_back(
          {{"fault", "file"}, {"file", file}, {"operation", name}, {"error", strerrorname_np(error)}});
    }
  }
  for (const auto& [fault, error] : addresses_) {
    const auto& [address, stage] = fault;
    present.push_back({{"fault", "i2c"},
                       {"address", fmt::format("0x{:02X}", address)},
                       {"stage", stage},
                       {"error", strerrorname_np(error)}});
  }
  return present;
}

void BoardFaults::Refuse(std::uint8_t address, const std::string& stage, int error) {
  if (stage == "select") {
    board_.i2c().RefuseSelection(address, error);
  } else {
    board_.i2c().RefuseTransfers(address, error);
  }
}

}  // namespace rolu_sim
