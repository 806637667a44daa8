#include "soak/judgement.h"

#include <fmt/format.h>

#include <algorithm>

#include "soak/operations.h"
#include "soak/process_usage.h"
#include "tests/oracle/meaning.h"
#include "tools/status_words.h"

namespace rolu_soak {
namespace {

bool IsUnanswered(ROLU_STATUS status) {
  return status == ROLU_STATUS_VPM_NO_REPLY || status == ROLU_STATUS_VPM_OPEN_FAILED;
}

std::string Commands(const std::vector<Exchange>& exchanges) {
  std::string text;
  for (const Exchange& exchange : exchanges) {
    text += fmt::format("{}{} ({})", text.empty() ? "" : ", ", exchange.command,
                        exchange.reply ? "answer " + *exchange.reply : "no answer");
  }
  return text.empty() ? "none" : text;
}

// All families send the greeting, so the MCU cannot tell whose it is: a call that should send it is taken to
// have sent it.
rolu_test::Made MadeCall(const CallFacts& facts) {
  rolu_test::Made made{facts.status, facts.output,
                       facts.row->brings_up && facts.family_was_up ? "Hello\r" : ""};
  for (const Exchange& exchange : facts.exchanges) made.traffic += exchange.command + "\r";
  return made;
}

rolu_test::Ending EndingOf(const CallFacts& facts) {
  const rolu_test::CallRow& row = *facts.row;
  if (row.wire.empty()) return {row.status, rolu_test::MemoryWith(row.output), ""};
  rolu_test::Replies replies;
  if (row.brings_up) replies.emplace_back("OK");
  for (const Exchange& exchange : facts.exchanges) replies.push_back(exchange.reply);
  replies.resize(std::max(replies.size(), rolu_test::CommandsOf(row.wire).size()));
  return MeaningOf(row, replies);
}

}  // namespace

std::string StatusText(ROLU_STATUS status) {
  constexpr std::string_view kPrefix = "ROLU_STATUS_";
  const std::string_view name = rolu::WordsOf(status).name;
  return name.starts_with(kPrefix) ? std::string(name.substr(kPrefix.size())) : rolu::CodeText(status);
}

Fault FaultIn(const CallFacts& facts) {
  const bool is_silent = facts.exchanges.empty();
  if (facts.family_was_up) {
    if (facts.port_was_dead && IsUnanswered(facts.status)) return {};
    if (facts.link_was_busy && facts.status == ROLU_STATUS_VPM_OPEN_FAILED && is_silent) return {};
    // The library knows without asking that the alarm is on.
    const bool is_on = facts.status == ROLU_STATUS_GSENSOR_ALARM_ALREADY_ENABLED;
    if (facts.row->undo && is_on && is_silent) return {};
  }
  const rolu_test::Ending ending =
      facts.family_was_up ? EndingOf(facts) : rolu_test::Ending{ROLU_STATUS_NOT_INITIALIZED};
  const rolu_test::Made made = MadeCall(facts);
  const std::string wrong = FaultOf(made, ending);
  if (wrong.empty()) return {};
  const bool lacks_commands = made.traffic.size() < ending.wire.size();
  const bool has_missed =
      facts.family_was_up && IsUnanswered(facts.status) && (facts.status != ending.status || lacks_commands);
  return {fmt::format(R"("{}", due is "{}": {}commands: {})", StatusText(facts.status),
                      StatusText(ending.status), wrong, Commands(facts.exchanges)),
          has_missed ? std::chrono::nanoseconds(kStarved) : Fault::kUnexplained};
}

void PrepareJudgement() {
  for (const Operation& operation : Operations()) MeaningOf(*operation.row, HealthyReplies(*operation.row));
}

std::uint64_t ExcusableCalls(std::uint64_t calls) {
  return std::max<std::uint64_t>(kLanes, calls / 1000);
}

}  // namespace rolu_soak
