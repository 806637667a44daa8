#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>

#include "protocol/commands.h"
#include "protocol/values.h"
#include "protocol/words.h"
#include "tools/command.h"
#include "tools/interrupt.h"
#include "tools/mcu_port.h"
#include "tools/report.h"
#include "tools/status_words.h"

namespace rolu {
namespace {

constexpr std::size_t kLongestLine = 63;  // as the library reads it
constexpr std::chrono::milliseconds kAnswerWait{3000};
// After the answer a command that is not known may have more lines.
constexpr std::chrono::milliseconds kNextLineWait{100};

// The known command that the text is, with fields that fit; null when there is none.
const rolu_protocol::Command* KnownCommand(std::string_view text) {
  const rolu_protocol::Command* const command = rolu_protocol::FindCommand(text);
  return command != nullptr && rolu_protocol::ParseCommandFields(text, *command) ? command : nullptr;
}

std::string ParseText(const std::vector<std::string>& words) {
  std::string text = fmt::format("{}", fmt::join(words, " "));
  const bool prints = std::ranges::all_of(text, [](char c) { return c >= ' ' && c <= '~'; });
  if (prints && !text.empty() && text.size() <= kLongestLine) return text;
  throw CommandError(kWrongUse, fmt::format("a command has 1 to {} characters that print", kLongestLine));
}

struct AnswerLine {
  std::string line;
  std::string words;
};

// Reads the answer, and messages that no command asked for in between.
std::vector<AnswerLine> ReadAnswer(McuPort& port, rolu_protocol::Words& words,
                                   const rolu_protocol::Command* command) {
  std::vector<AnswerLine> lines;
  int due = command == nullptr ? 1 : command->answer_lines;
  while (true) {
    const bool is_open_end = due == 0 && command == nullptr;
    if (due == 0 && !is_open_end) return lines;
    const std::optional<std::string> line = port.ReadLine(is_open_end ? kNextLineWait : kAnswerWait);
    if (!line) return lines;
    lines.push_back({*line, words.OfAnswer(*line)});
    const bool is_answer = !rolu_protocol::IsMessage(*line);
    if (is_answer && due > 0) --due;
    // An error is the whole answer.
    if (is_answer && line->starts_with("ERR-")) return lines;
  }
}

ExitStatus Judge(const std::vector<AnswerLine>& answer) {
  const auto is_answer = [](const AnswerLine& line) { return !rolu_protocol::IsMessage(line.line); };
  const auto last = std::ranges::find_if(answer.rbegin(), answer.rend(), is_answer);
  if (last == answer.rend()) throw CommandError(kNoAnswer, "the MCU did not answer in time");
  return last->line.starts_with("ERR-") ? kRefused : kDone;
}

ExitStatus RunRaw(const std::vector<std::string>& given, const CommonOptions& common) {
  const std::string text = ParseText(given);
  const rolu_protocol::Command* const command = KnownCommand(text);
  rolu_protocol::Words words;
  const std::string meaning = words.OfCommand(text);
  if (command == nullptr || !command->is_question) {
    Confirm(common, {fmt::format("sends {} to the MCU: {}", text, meaning)});
  }
  RequireFreePort(common);
  McuPort port;
  port.SendLine(text);
  const std::vector<AnswerLine> answer = ReadAnswer(port, words, command);
  Document document = {{"command", text}, {"words", meaning}, {"answer", Document::array()}};
  for (const AnswerLine& line : answer) {
    document["answer"].push_back({{"line", line.line}, {"words", line.words}});
    if (!common.json) Out(fmt::format("{:<16}  {}\n", line.line, line.words));
  }
  if (common.json) PrintJson(document);
  // The next program may ask at once.
  if (command != nullptr) interrupt::SleepFor(std::chrono::milliseconds(command->post_delay_ms));
  return Judge(answer);
}

}  // namespace

void AddRawCommand(CLI::App& app, Invocation& invocation) {
  auto text = std::make_shared<std::vector<std::string>>();
  CLI::App* const command = NewCommand(
      app, "raw", "Send one command to the MCU as it is, and print the lines of its answer",
      "  rolu raw MCVG\n  rolu raw -y WKMS61\n"
      "A known question goes at once; everything else asks first, because it may change something.");
  command->add_option("TEXT", *text, "The command without its line end")->required();
  OnRun(command, invocation, RunRaw, text);
}

}  // namespace rolu
