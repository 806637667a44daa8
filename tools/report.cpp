#include "tools/report.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <utility>

#include "tools/messages.h"
#include "tools/output.h"
#include "tools/status_words.h"

namespace rolu {
namespace {

struct Colours {
  const char* bold = "";
  const char* red = "";
  const char* dim = "";
  const char* plain = "";
};

Colours OutputColours() {
  if (!MayColour(STDOUT_FILENO)) return {};
  return {"\033[1m", "\033[31m", "\033[2m", "\033[0m"};
}

std::string Dump(const Document& document, int indent) {
  return document.dump(indent, ' ', false, Document::error_handler_t::replace);
}

}  // namespace

void Report::AddValue(const Setting& setting, const Value& value) {
  AddValue(std::string(setting.name), value, ValueText(setting, value), std::string(setting.unit));
}

void Report::AddValue(std::string name, const Value& value, std::string text, std::string unit) {
  fields_.push_back({Form::kValue, std::move(name), value, std::move(text), std::move(unit)});
}

void Report::AddProblem(std::string name, ROLU_STATUS status) {
  fields_.push_back({Form::kProblem, std::move(name), {}, DescribeShortly(status), {}, status});
}

void Report::AddSkipped(std::string name, std::string reason) {
  fields_.push_back({Form::kSkipped, std::move(name), {}, std::move(reason), {}});
}

void Report::AddTitle(std::string title) {
  fields_.push_back({Form::kTitle, std::move(title), {}, {}, {}});
}

Document Report::AsJson() const {
  Document document = Document::object();
  for (const Field& field : fields_) {
    switch (field.form) {
      case Form::kTitle:
        break;
      case Form::kValue:
        document[field.name]["value"] = field.value;
        if (!field.unit.empty()) document[field.name]["unit"] = field.unit;
        break;
      case Form::kProblem:
        document[field.name] = {{"error", field.text}, {"status", CodeText(field.status)}};
        break;
      case Form::kSkipped:
        document[field.name] = {{"skipped", field.text}};
        break;
    }
  }
  return document;
}

void Report::PrintText() const {
  const Colours colours = OutputColours();
  std::size_t width = 0;
  for (const Field& field : fields_) {
    if (field.form != Form::kTitle) width = std::max(width, field.name.size());
  }
  const bool has_titles = std::any_of(fields_.begin(), fields_.end(),
                                      [](const Field& field) { return field.form == Form::kTitle; });
  for (const Field& field : fields_) {
    const std::string start = fmt::format("{}{:<{}}  ", has_titles ? "  " : "", field.name, width);
    switch (field.form) {
      case Form::kTitle:
        Out(fmt::format("{}{}{}\n", colours.bold, field.name, colours.plain));
        break;
      case Form::kValue:
        Out(fmt::format("{}{}{}{}\n", start, field.text, field.unit.empty() ? "" : " ", field.unit));
        break;
      case Form::kProblem:
        Out(fmt::format("{}{}- {}{}\n", start, colours.red, field.text, colours.plain));
        break;
      case Form::kSkipped:
        Out(fmt::format("{}{}- {}{}\n", start, colours.dim, field.text, colours.plain));
        break;
    }
  }
}

void Report::Print(bool json) const {
  if (json) {
    PrintJson(AsJson());
  } else {
    PrintText();
  }
}

void Report::PrintValues() const {
  for (const Field& field : fields_) {
    if (field.form == Form::kValue) Out(fmt::format("{}\n", field.text));
  }
}

void PrintJson(const Document& document) {
  Out(Dump(document, 2) + "\n");
}

void PrintJsonLine(const Document& document) {
  OutNow(Dump(document, -1) + "\n");
}

}  // namespace rolu
