#include "soak/answering_mcu.h"

#include <fmt/format.h>

#include <algorithm>
#include <bitset>
#include <utility>

#include "protocol/values.h"
#include "tests/oracle/made_call.h"
#include "tests/oracle/plain_reading.h"

namespace rolu_soak {
namespace {

using rolu_sim::AnswerFault;
using rolu_sim::AnswerFaultKind;
using rolu_sim::Reply;
using std::chrono::milliseconds;

constexpr char kLineEnd[] = "\r\n";

// How often a strike comes in a million commands, and which fault of the desk it is. The fault's number is
// `least` or more, one of `kinds`. Strikes that cost the line 3 s are rare.
struct Chance {
  Strike strike;
  std::uint32_t of_a_million;
  AnswerFaultKind fault;
  std::uint32_t least = 0;
  std::uint32_t kinds = 1;
};
constexpr Chance kChances[] = {
    {Strike::kSilence, 500, AnswerFaultKind::kSilence},
    {Strike::kLate, 1000, AnswerFaultKind::kSilence},
    {Strike::kLongLine, 300, AnswerFaultKind::kLongLine, 64, 200},
    // Well below the 3 s that the library waits, so that a loaded machine does not turn it into silence.
    {Strike::kDelay, 2000, AnswerFaultKind::kDelay, 1, 1500},
    {Strike::kError, 20000, AnswerFaultKind::kErrorReply, 0, rolu_protocol::kErrorReplies.size()},
    {Strike::kGarble, 4000, AnswerFaultKind::kGarble, 1, 3},
    {Strike::kDrop, 2000, AnswerFaultKind::kDropBytes, 1, 3},
};

// Answers that a start-up keeps for later calls stay as the tests' tables have them.
bool MayBeDistorted(std::string_view command) {
  return !command.starts_with("ATF0") && !command.starts_with("MCVU");
}

// Of two lines the last one.
std::optional<std::string> ReplyIn(const std::string& sent, int answer_lines) {
  std::vector<std::string> lines = rolu_test::ReplyLines(sent);
  const auto wanted = static_cast<std::size_t>(answer_lines);
  if (lines.size() < wanted) return std::nullopt;
  return std::move(lines[wanted - 1]);
}

using rolu_protocol::Field;

// The steps of a generator whose numbers show no pattern in any of their bits.
std::uint64_t Scatter(std::uint64_t number) {
  number += 0x9E3779B97F4A7C15U;
  number = (number ^ (number >> 30U)) * 0xBF58476D1CE4E5B9U;
  number = (number ^ (number >> 27U)) * 0x94D049BB133111EBU;
  return number ^ (number >> 31U);
}

template <typename List>
const auto& ElementOf(const List& list, std::uint64_t any) {
  return list.at(static_cast<std::size_t>(any % list.size()));
}

std::string DrawnField(Field field, std::uint64_t running, std::uint64_t any) {
  switch (field) {
    case rolu_protocol::kDone:
      return "OK";
    case rolu_protocol::kWord:
    case rolu_protocol::kNumber:
    case rolu_protocol::kMillivolts:
    case rolu_protocol::kTenthsOfKelvin:
      return fmt::format("{:04X}", running & 0xFFFFU);
    case rolu_protocol::kSigned:
      return fmt::format("{:04X}", any & 0xFFFFU);
    case rolu_protocol::kByte:
      return fmt::format("{:02X}", any & 0xFFU);
    case rolu_protocol::kCharacter:
      return fmt::format("{}", any % 10);
    case rolu_protocol::kSwitch:
      return fmt::format("{}", any % 2);
    case rolu_protocol::kSystemByte:
      return fmt::format("{:02X}", ElementOf(rolu_protocol::kBatterySystems, any).number);
    case rolu_protocol::kSwitches:
      return std::bitset<rolu_protocol::kWakeupSources>(any).to_string();
    case rolu_protocol::kStatusBits:
      return std::bitset<16>(any).to_string();
    case rolu_protocol::kWakeupCode:
      return fmt::format("{:02X}", ElementOf(rolu_protocol::kWakeupCodes, any).code);
    case rolu_protocol::kIgnition:
      return any % 2 == 0 ? "ON" : "OFF";
    case rolu_protocol::kClock:
      return fmt::format("{:014X}", any & 0xFFFFFFFFFFFFFFU);
    case rolu_protocol::kAlarm:
      return fmt::format("{:06X}", any & 0xFFFFFFU);
    default:
      return {};
  }
}

}  // namespace

std::string DrawnAnswer(const rolu_protocol::Command& command, std::uint64_t running) {
  if (command.code == "ATF1") return fmt::format("*PLT:{:012X}*", running);
  std::string line;
  std::uint64_t any = running;
  for (const Field field : command.answer_fields) line += DrawnField(field, running, any = Scatter(any));
  return line;
}

AnsweringMcu::AnsweringMcu(std::uint32_t seed, Findings& violations)
    : violations_(violations), dice_(seed), desk_faults_(seed, [](const std::string&) {}) {
  // More than any call needs. The soak compares the process's memory, so the lists have their full size from
  // the start.
  plans_.reserve(8);
  for (Lane& lane : lanes_) lane.exchanges.reserve(16);
}

std::string AnsweringMcu::BeginCall(std::size_t lane) {
  const std::lock_guard<std::mutex> lock(mutex_);
  lanes_.at(lane).is_calling = true;
  return std::exchange(lanes_.at(lane).uncalled, {});
}

std::vector<Exchange> AnsweringMcu::EndCall(std::size_t lane) {
  const std::lock_guard<std::mutex> lock(mutex_);
  lanes_.at(lane).is_calling = false;
  // The list keeps its room.
  std::vector<Exchange> exchanges = lanes_.at(lane).exchanges;
  lanes_.at(lane).exchanges.clear();
  return exchanges;
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
  if (bytes == kLineEnd) bytes = rolu_test::BytesOf(ask_model());
  Struck struck = Strikes(command);
  ++strikes_.at(static_cast<std::size_t>(struck.strike));
  Reply reply = Send(command, bytes, std::move(struck));
  const std::size_t owner = LaneOf(command);
  if (owner == kAnyLane) return reply;
  Lane& lane = lanes_.at(owner);
  if (lane.is_calling) {
    lane.exchanges.push_back({std::string(command), ReplyIn(rolu_test::BytesOf(reply), known->answer_lines)});
  } else {
    lane.uncalled = command;
  }
  return reply;
}

AnsweringMcu::Struck AnsweringMcu::Strikes(std::string_view command) {
  const auto plan = std::ranges::find_if(
      plans_, [command](const PlannedAnswer& planned) { return command.starts_with(planned.command); });
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
  std::uint32_t drawn = dice_.Below(1000000);
  for (const Chance& chance : kChances) {
    if (drawn >= chance.of_a_million) {
      drawn -= chance.of_a_million;
      continue;
    }
    const bool distorts = chance.strike == Strike::kGarble || chance.strike == Strike::kDrop;
    if (distorts && !MayBeDistorted(command)) return {};
    const std::uint32_t number = chance.least + dice_.Below(chance.kinds);
    AnswerFault fault;
    fault.kind = chance.fault;
    fault.delay = milliseconds(number);
    fault.count = number;
    if (chance.strike == Strike::kError) fault.error = rolu_protocol::kErrorReplies.at(number);
    return {chance.strike, std::move(fault)};
  }
  return {};
}

Reply AnsweringMcu::Send(std::string_view command, const std::string& bytes, Struck struck) {
  if (struck.strike == Strike::kNone) {
    // In one piece: the next command must not overtake the late line.
    if (!late_.empty()) ++late_answers_sent_;
    return Reply::Bytes(bytes + std::exchange(late_, {}));
  }
  if (struck.strike == Strike::kLate) late_ = bytes;
  struck.fault.command = command;
  struck.fault.times = 1;
  desk_faults_.Add(std::move(struck.fault));
  return desk_faults_.Answer(command, [&bytes] { return Reply::Bytes(bytes); });
}

}  // namespace rolu_soak
