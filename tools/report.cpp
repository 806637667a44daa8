#include "tools/report.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <utility>

#include "cli/messages.h"
#include "tools/output.h"
#include "tools/status_words.h"

namespace rolu {
namespace {

constexpr char kBold[] = "\033[1m";
constexpr char kRed[] = "\033[31m";
constexpr char kDim[] = "\033[2m";
constexpr char kPlain[] = "\033[0m";

std::string Dump(const Document& document, int indent) {
  return document.dump(indent, ' ', false, Document::error_handler_t::replace);
}

}  // namespace

void Report::AddValue(const Setting& setting, const Value& value) {
  AddValue(std::string(setting.name), value, ValueText(setting, value), setting.unit);
}

void Report::AddValue(std::string name, const Value& value, std::string text, std::string_view unit) {
  Document json = {{"value", value}};
  if (!unit.empty()) json["unit"] = unit;
  fields_.push_back({std::move(name), std::move(json), std::move(text)});
}

void Report::AddProblem(std::string_view name, ROLU_STATUS status) {
  const std::string problem = DescribeShortly(status);
  fields_.push_back(
      {std::string(name), {{"error", problem}, {"status", CodeText(status)}}, "- " + problem, kRed});
}

void Report::AddSkipped(std::string_view name, std::string_view reason) {
  fields_.push_back({std::string(name), {{"skipped", reason}}, fmt::format("- {}", reason), kDim});
}

void Report::AddTitle(std::string_view title) {
  fields_.push_back({std::string(title), nullptr, "", kBold});
}

void Report::PrintText() const {
  const bool may_colour = MayColour(STDOUT_FILENO);
  std::size_t width = 0;
  bool has_titles = false;
  for (const Field& field : fields_) {
    if (field.json.is_null()) has_titles = true;
    if (!field.json.is_null()) width = std::max(width, field.name.size());
  }
  for (const Field& field : fields_) {
    const bool is_coloured = may_colour && *field.colour != '\0';
    const char* const paint = is_coloured ? field.colour : "";
    const char* const plain = is_coloured ? kPlain : "";
    if (field.json.is_null()) {
      Out(fmt::format("{}{}{}\n", paint, field.name, plain));
    } else {
      const std::string unit = field.json.value("unit", "");
      Out(fmt::format("{}{:<{}}  {}{}{}{}{}\n", has_titles ? "  " : "", field.name, width, paint, field.text,
                      unit.empty() ? "" : " ", unit, plain));
    }
  }
}

void Report::Print(bool json) const {
  if (!json) return PrintText();
  Document document = Document::object();
  for (const Field& field : fields_) {
    if (!field.json.is_null()) document[field.name] = field.json;
  }
  PrintJson(document);
}

void Report::PrintValues() const {
  for (const Field& field : fields_) {
    if (field.json.contains("value")) Out(field.text + "\n");
  }
}

void PrintJson(const Document& document) {
  Out(Dump(document, 2) + "\n");
}

void PrintJsonLine(const Document& document) {
  OutNow(Dump(document, -1) + "\n");
}

}  // namespace rolu
