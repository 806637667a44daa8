#include "tools/report.h"

#include <fmt/chrono.h>
#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <utility>

#include "cli/messages.h"
#include "tools/digital_lines.h"
#include "tools/interrupt.h"

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
  const std::string problem = DescribeShortly(status, Act::kRead);
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

ROLU_STATUS ReadInto(Session& session, const Setting& setting, Report& report, Outcome& outcome) {
  interrupt::ThrowIfRequested();
  Value value;
  const ROLU_STATUS status = session.Read(setting, value);
  if (status == ROLU_STATUS_SUCCESS) report.AddValue(setting, value);
  outcome.Add(WordsOf(status).exit_status);
  return status;
}

std::string WhyNotRead(const Setting& setting, ROLU_STATUS status) {
  if (setting.name == kInputPins && LinesAreUnprepared()) return kLinesAreUnprepared;
  return DescribeWithHint(status, Act::kRead);
}

ExitStatus ReadAndPrint(Session& session, const std::string& name, const CommonOptions& common) {
  Report report;
  for (const Setting* const setting : SettingsNamed({name})) {
    Value value;
    const ROLU_STATUS status = session.Read(*setting, value);
    if (status != ROLU_STATUS_SUCCESS) {
      throw CommandError(WordsOf(status).exit_status,
                         fmt::format("could not read {}: {}", setting->name, WhyNotRead(*setting, status)));
    }
    report.AddValue(*setting, value);
  }
  report.Print(common.json);
  return kDone;
}

std::string TimeStamp() {
  using std::chrono::system_clock;
  const system_clock::time_point now = system_clock::now();
  const std::tm fields = fmt::localtime(system_clock::to_time_t(now));
  const auto milliseconds =
      std::chrono::duration_cast<std::chrono::milliseconds>(now.time_since_epoch()).count() % 1000;
  const std::string offset = fmt::format("{:%z}", fields);
  return fmt::format("{:%Y-%m-%dT%H:%M:%S}.{:03}{:.3}:{}", fields, milliseconds, offset, offset.substr(3));
}

}  // namespace rolu
