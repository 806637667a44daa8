#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <string_view>

#include "simulator/control/readings.h"

namespace rolu_sim {
namespace {

struct ReadingUnit {
  std::string_view suffix;
  std::string_view text;
};
constexpr std::array<ReadingUnit, 7> kReadingUnits = {{{"_v", " V"},
                                                       {"_s", " s"},
                                                       {"_ms", " ms"},
                                                       {"_c", " degrees Celsius"},
                                                       {"_percent", " %"},
                                                       {"_units", " units"},
                                                       {"_steps", " steps of 62.5"}}};

bool EndsWith(std::string_view text, std::string_view end) {
  return text.size() > end.size() && text.substr(text.size() - end.size()) == end;
}

// "voltage_v" says "voltage" in V.
std::pair<std::string, std::string_view> LabelAndUnit(std::string_view name) {
  const auto* const unit =
      std::find_if(kReadingUnits.begin(), kReadingUnits.end(),
                   [&](const ReadingUnit& entry) { return EndsWith(name, entry.suffix); });
  std::string label(name.substr(0, name.size() - (unit == kReadingUnits.end() ? 0 : unit->suffix.size())));
  std::replace(label.begin(), label.end(), '_', ' ');
  return {label, unit == kReadingUnits.end() ? std::string_view() : unit->text};
}

std::string ValueAsText(const Json& value) {
  if (value.is_null()) return "-";
  if (value.is_boolean()) return value.get<bool>() ? "yes" : "no";
  return value.is_string() ? value.get<std::string>() : value.dump();
}

bool IsListOfValues(const Json& value) {
  return value.is_array() &&
         std::none_of(value.begin(), value.end(), [](const Json& item) { return item.is_structured(); });
}

std::string ListAsText(const Json& list) {
  std::vector<std::string> items;
  for (const Json& item : list) items.push_back(ValueAsText(item));
  return items.empty() ? "none" : fmt::format("{}", fmt::join(items, ", "));
}

// An element of a list of objects takes one line.
std::string ElementAsText(const Json& element) {
  std::vector<std::string> parts;
  for (const auto& [name, value] : element.items()) {
    const auto [label, unit] = LabelAndUnit(name);
    parts.push_back(fmt::format("{} {}{}", label, ValueAsText(value), unit));
  }
  return fmt::format("{}", fmt::join(parts, ", "));
}

// A reading may consist of readings, and those of others.
// NOLINTNEXTLINE(misc-no-recursion): our own readings are nested a few deep, not without end
void Append(std::string& text, const Json& members, std::size_t depth) {
  const std::string indent(depth * 2, ' ');
  for (const auto& [name, value] : members.items()) {
    const auto [label, unit] = LabelAndUnit(name);
    if (IsListOfValues(value)) {
      text += fmt::format("{}{}: {}\n", indent, label, ListAsText(value));
    } else if (value.is_array()) {
      text += fmt::format("{}{}:\n", indent, label);
      for (const Json& element : value) text += fmt::format("{}  {}\n", indent, ElementAsText(element));
    } else if (value.is_object()) {
      text += fmt::format("{}{}:\n", indent, label);
      Append(text, value, depth + 1);
    } else {
      text += fmt::format("{}{}: {}{}\n", indent, label, ValueAsText(value), value.is_null() ? "" : unit);
    }
  }
}

}  // namespace

std::string ReadingsAsText(const Json& readings) {
  std::string text;
  Append(text, readings, 0);
  return text;
}

}  // namespace rolu_sim
