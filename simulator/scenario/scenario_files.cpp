#include "simulator/scenario/scenario_files.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>

#include "cli/nearest_name.h"
#include "simulator/installed_files.h"

namespace rolu_sim {
namespace {

constexpr char kExtension[] = ".json";

std::optional<std::string> ReadFile(const std::filesystem::path& path) {
  if (!std::filesystem::is_regular_file(path)) return std::nullopt;
  std::ifstream file(path, std::ios::binary);
  std::string text{std::istreambuf_iterator<char>(file), {}};
  if (file.bad()) return std::nullopt;
  return text;
}

}  // namespace

std::vector<std::string> ReadyScenarioNames() {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(FindScenarioDirectory())) {
    if (entry.path().extension() == kExtension) names.push_back(entry.path().stem());
  }
  std::sort(names.begin(), names.end());
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
