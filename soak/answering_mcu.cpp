#include "soak/answering_mcu.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "protocol/commands.h"
#include "protocol/values.h"
#include "soak/drawn_answer.h"
#include "tests/oracle/made_call.h"
#include "tests/oracle/plain_reading.h"

namespace rolu_soak {
namespace {

using rolu_sim::AnswerFault;
using rolu_sim::AnswerFaultKind;
using rolu_sim::Reply;
using std::chrono::milliseconds;

constexpr char kLineEnd[] = "\r\n";

// Of a million commands. What costs the line 3 s is rare.
struct Chance {
  Strike strike;
  std::uint32_t of_a_million;
};
constexpr Chance kChances[] = {
    {Strike::kSilence, 500}, {Strike::kLate, 1000},   {Strike::kLongLine, 300}, {Strike::kDelay, 2000},
    {Strike::kError, 20000}, {Strike::kGarble, 4000}, {Strike::kDrop, 2000},
};

// Well below the 3 s that the library waits, so that a loaded machine does not turn it into silence.
constexpr std::uint32_t kLongestDelayMs = 1500;

bool BeginsWith(std::string_view text, std::string_view begin) {
  return text.substr(0, begin.size()) == begin;
}

// What a start-up keeps for later calls stays as the tests' tables have it.
bool MayBeDistorted(std::string_view command) {
  return !BeginsWith(command, "ATF0") && !BeginsWith(command, "MCVU");
}

std::string BytesOf(const Reply& reply) {
  return rolu_test::BytesOf(rolu_test::Answer(reply));
}

// Of two lines the last one.
std::optional<std::string> ReplyIn(const std::string& sent, int answer_lines) {
  std::vector<std::string> lines = rolu_test::ReplyLines(sent);
  const auto wanted = static_cast<std::size_t>(answer_lines);
  if (lines.size() < wanted) return std::nullopt;
  return std::move(lines[wanted - 1]);
}

}  // namespace

AnsweringMcu::AnsweringMcu(std::uint32_t seed, const Lanes& lanes, Findings& violations)
    : lanes_(lanes), violations_(violations), random_(seed), desk_faults_(seed, [](const std::string&) {}) {
  // More than any call has. What the process holds is compared, so the list has its whole size from the
  // start.
  plans_.reserve(8);
}

void AnsweringMcu::Plan(const std::vector<PlannedAnswer>& answers) {
  const std::lock_guard<std::mutex> lock(mutex_);
  plans_ = answers;
}

void AnsweringMcu::ForgetLateAnswer() {
  const std::lock_guard<std::mutex> lock(mutex_);
  late_.clear();
}

Reply AnsweringMcu::Answer(std::string_view command, const rolu_sim::AskModel& ask_model) {
  const std::lock_guard<std::mutex> lock(mutex_);
  const std::uint64_t running = ++commands_;
  const rolu_protocol::Command* const known = rolu_protocol::FindCommand(command);
  if (known == nullptr) {
    violations_.Add(fmt::format("the MCU got \"{}\", which no call sends", command));
    return Reply::Silence();
  }
  std::string bytes;
  for (int line = 0; line < known->answer_lines; ++line) bytes += DrawnAnswer(*known, running) + kLineEnd;
  if (bytes == kLineEnd) bytes = BytesOf(ask_model());
  Struck struck = Strikes(command);
  ++strikes_.at(static_cast<std::size_t>(struck.strike));
  Reply reply = Send(command, std::move(bytes), std::move(struck));
  const std::size_t lane = LaneOf(command);
  if (lane != kAnyLane) {
    lanes_.at(lane)->Record({std::string(command), ReplyIn(BytesOf(reply), known->answer_lines)});
  }
  return reply;
}

AnsweringMcu::Struck AnsweringMcu::Strikes(std::string_view command) {
  const auto plan = std::find_if(plans_.begin(), plans_.end(), [command](const PlannedAnswer& planned) {
    return BeginsWith(command, planned.command);
  });
  if (plan == plans_.end()) return DrawStrike(command);
  Struck struck{Strike::kSilence};
  if (plan->delay != kNever) {
    struck.strike = Strike::kDelay;
    struck.fault.kind = AnswerFaultKind::kDelay;
    struck.fault.delay = plan->delay;
  }
  plans_.erase(plan);
  return struck;
}

AnsweringMcu::Struck AnsweringMcu::DrawStrike(std::string_view command) {
  if (!faults_on_) return {};
  Struck struck;
  std::uint32_t drawn = Draw(1000000);
  for (const Chance& chance : kChances) {
    if (drawn < chance.of_a_million) {
      struck.strike = chance.strike;
      break;
    }
    drawn -= chance.of_a_million;
  }
  AnswerFault& fault = struck.fault;
  switch (struck.strike) {
    case Strike::kDelay:
      fault.kind = AnswerFaultKind::kDelay;
      fault.delay = milliseconds(1 + Draw(kLongestDelayMs));
      break;
    case Strike::kError:
      fault.kind = AnswerFaultKind::kErrorReply;
      fault.error = rolu_protocol::kErrorReplies.at(Draw(rolu_protocol::kErrorReplies.size()));
      break;
    case Strike::kGarble:
    case Strike::kDrop:
      if (!MayBeDistorted(command)) return {};
      fault.kind = struck.strike == Strike::kGarble ? AnswerFaultKind::kGarble : AnswerFaultKind::kDropBytes;
      fault.count = 1 + Draw(3);
      break;
    case Strike::kLongLine:
      fault.kind = AnswerFaultKind::kLongLine;
      fault.count = 64 + Draw(200);
      break;
    case Strike::kNone:
    case Strike::kSilence:
    case Strike::kLate:
      break;
  }
  return struck;
}

Reply AnsweringMcu::Send(std::string_view command, std::string bytes, Struck struck) {
  if (struck.strike == Strike::kNone) return SendUndisturbed(std::move(bytes));
  if (struck.strike == Strike::kLate) late_.assign(bytes);
  struck.fault.command = command;
  struck.fault.times = 1;
  desk_faults_.Add(std::move(struck.fault));
  return desk_faults_.Answer(command, [&bytes] { return Reply::Bytes(bytes); });
}

// In one piece: the line that is late must not be overtaken by a next command.
Reply AnsweringMcu::SendUndisturbed(std::string bytes) {
  if (!late_.empty()) ++late_answers_sent_;
  bytes += late_;
  late_.clear();
  return Reply::Bytes(std::move(bytes));
}

}  // namespace rolu_soak
