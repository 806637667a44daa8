#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <charconv>

#include "cli/nearest_name.h"
#include "tools/command.h"
#include "tools/report.h"
#include "tools/status_words.h"

namespace rolu {
namespace {

constexpr std::string_view kPrefix = "ROLU_STATUS_";

std::string UpperCase(std::string text) {
  std::ranges::transform(text, text.begin(), [](unsigned char c) { return std::toupper(c); });
  return text;
}

// The code in "0xC048", "C048" or "49224"; a negative number when the text is not one.
long ParseCode(std::string_view text) {
  const bool has_prefix = text.starts_with("0x") || text.starts_with("0X");
  if (has_prefix) text.remove_prefix(2);
  const bool is_hex = has_prefix || text.find_first_of("ABCDEFabcdef") != std::string_view::npos;
  long code = -1;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), code, is_hex ? 16 : 10);
  return error == std::errc() && end == text.data() + text.size() ? code : -1;
}

// The statuses with this code, this name or a name that ends so. Throws CommandError(kWrongUse).
std::vector<const StatusWords*> FindStatuses(const std::string& text) {
  const std::string name = UpperCase(text);
  const long code = ParseCode(text);
  std::vector<const StatusWords*> found;
  std::vector<std::string> known;
  for (const StatusWords& words : AllStatusWords()) {
    if (words.status == code || name == words.name) return {&words};
    if (std::string_view(words.name).ends_with("_" + name)) found.push_back(&words);
    known.emplace_back(words.name);
    known.emplace_back(std::string_view(words.name).substr(kPrefix.size()));
  }
  if (!found.empty()) return found;
  throw CommandError(kWrongUse, fmt::format("there is no status \"{}\"{}", text, Suggestion(name, known)));
}

Document AsJson(const StatusWords& words) {
  return {{"status", CodeText(words.status)},
          {"number", words.status},
          {"name", words.name},
          {"words", words.words},
          {"cause", words.cause},
          {"what_to_do", words.hint}};
}

void PrintExplanation(const StatusWords& words) {
  Out(fmt::format("{} ({}, {})\n  {}.\n  Cause: {}\n", words.name, CodeText(words.status), words.status,
                  words.words, words.cause));
  if (*words.hint != '\0') Out(fmt::format("  What to do: {}.\n", words.hint));
}

ExitStatus RunExplain(const std::vector<std::string>& texts, const CommonOptions& common) {
  std::vector<const StatusWords*> statuses;
  for (const std::string& text : texts) std::ranges::move(FindStatuses(text), std::back_inserter(statuses));
  if (texts.empty()) {
    for (const StatusWords& words : AllStatusWords()) statuses.push_back(&words);
  }
  Document document = Document::array();
  for (const StatusWords* const words : statuses) {
    document.push_back(AsJson(*words));
    if (!common.json) PrintExplanation(*words);
  }
  if (common.json) PrintJson(document);
  return kDone;
}

}  // namespace

void AddExplainCommand(CLI::App& app, Invocation& invocation) {
  auto texts = std::make_shared<std::vector<std::string>>();
  CLI::App* const command =
      NewCommand(app, "explain", "Explain a status of the library: cause, what to do; asks the board nothing",
                 "  rolu explain 0xC048\n  rolu explain NO_REPLY\n  rolu explain");
  command->add_option(
      "STATUS", *texts,
      "A code, like 0xC048, C048 or 49224, or a name or its end; without it all are explained");
  OnRun(command, invocation, RunExplain, texts);
}

}  // namespace rolu
