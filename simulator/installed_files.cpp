#include "simulator/installed_files.h"

#include <stdexcept>
#include <string>

namespace rolu_sim {
namespace {

std::filesystem::path Find(const std::string& name, const char* installed_directory) {
  const std::filesystem::path directory = std::filesystem::read_symlink("/proc/self/exe").parent_path();
  std::filesystem::path beside = directory / name;
  if (std::filesystem::exists(beside)) return beside;
  std::filesystem::path installed = (directory.parent_path() / installed_directory / name).lexically_normal();
  if (std::filesystem::exists(installed)) return installed;
  throw std::runtime_error("there is neither " + beside.string() + " nor " + installed.string());
}

}  // namespace

std::filesystem::path FindPreloadObject() {
  return Find(ROLU_SIM_PRELOAD_NAME, ROLU_SIM_PRELOAD_DIRECTORY);
}

std::filesystem::path FindScenarioDirectory() {
  return Find("scenarios", ROLU_SIM_DATA_DIRECTORY);
}

}  // namespace rolu_sim
