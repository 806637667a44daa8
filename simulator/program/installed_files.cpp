#include "simulator/program/installed_files.h"

#include <fmt/format.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <optional>
#include <stdexcept>

#include "cli/nearest_name.h"
#include "simulator/desk/parameter.h"

namespace rolu_sim {
namespace {

constexpr char kExtension[] = ".json";

std::filesystem::path OwnDirectory() {
  return std::filesystem::read_symlink("/proc/self/exe").parent_path();
}

std::filesystem::path Find(const std::string& name, const char* installed_directory) {
  const std::filesystem::path directory = OwnDirectory();
  std::filesystem::path beside = directory / name;
  if (std::filesystem::exists(beside)) return beside;
  std::filesystem::path installed = (directory.parent_path() / installed_directory / name).lexically_normal();
  if (std::filesystem::exists(installed)) return installed;
  throw std::runtime_error("there is neither " + beside.string() + " nor " + installed.string());
}

std::filesystem::path FindScenarioDirectory() {
  return Find("scenarios", ROLU_SIM_DATA_DIRECTORY);
}

std::optional<std::string> ReadFile(const std::filesystem::path& path) {
  if (!std::filesystem::is_regular_file(path)) return std::nullopt;
  std::ifstream file(path, std::ios::binary);
  std::string text{std::istreambuf_iterator<char>(file), {}};
  if (file.bad()) return std::nullopt;
  return text;
}

}  // namespace

std::filesystem::path FindPreloadObject() {
  return Find(ROLU_SIM_PRELOAD_NAME, ROLU_SIM_PRELOAD_DIRECTORY);
}

std::optional<std::filesystem::path> FindPreloadObjectFor(const std::string& triplet) {
  const std::filesystem::path directory = OwnDirectory();
  const std::filesystem::path builds = directory.parent_path().parent_path();
  for (const std::filesystem::path& place : {builds / "arm-library/simulator", builds / "arm/simulator",
                                             directory.parent_path() / "lib" / triplet / "rolu-sim"}) {
    if (std::filesystem::exists(place / ROLU_SIM_PRELOAD_NAME)) return place / ROLU_SIM_PRELOAD_NAME;
  }
  return std::nullopt;
}

std::vector<std::string> ReadyScenarioNames() {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(FindScenarioDirectory())) {
    if (entry.path().extension() == kExtension) names.push_back(entry.path().stem());
  }
  std::ranges::sort(names);
  return names;
}

ScenarioFile ReadScenarioFile(const std::string& file_or_name) {
  if (auto text = ReadFile(file_or_name)) return {file_or_name, std::move(*text)};
  const bool may_be_a_name = file_or_name.find('/') == std::string::npos;
  if (may_be_a_name) {
    const std::filesystem::path ready = FindScenarioDirectory() / (file_or_name + kExtension);
    if (auto text = ReadFile(ready)) return {ready.string(), std::move(*text)};
  }
  throw UsageError(fmt::format("there is no file and no ready-made scenario \"{}\"{}", file_or_name,
                               rolu::Suggestion(file_or_name, ReadyScenarioNames())));
}

}  // namespace rolu_sim
