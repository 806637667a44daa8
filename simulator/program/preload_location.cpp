#include "simulator/program/preload_location.h"

#include <filesystem>
#include <stdexcept>

namespace rolu_sim {

std::string FindPreloadObject() {
  const std::filesystem::path directory = std::filesystem::read_symlink("/proc/self/exe").parent_path();
  const std::filesystem::path beside = directory / ROLU_SIM_PRELOAD_NAME;
  if (std::filesystem::exists(beside)) return beside;
  const std::filesystem::path installed =
      (directory.parent_path() / ROLU_SIM_PRELOAD_DIRECTORY / ROLU_SIM_PRELOAD_NAME).lexically_normal();
  if (std::filesystem::exists(installed)) return installed;
  throw std::runtime_error("there is neither " + beside.string() + " nor " + installed.string());
}

}  // namespace rolu_sim
