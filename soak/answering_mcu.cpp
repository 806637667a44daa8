#include "soak/answering_mcu.h"

#include <fmt/format.h>

#include <utility>

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

constexpr std::array<const char*, 6> kErrors = {"ERR-M08", "ERR-C01", "ERR-W02",
                                                "ERR-E04", "ERR-G01", "ERR-Q02"};

}  // namespace

AnsweringMcu::AnsweringMcu(std::uint32_t seed, const Lanes& lanes, Findings& violations)
    : lanes_(lanes), violations_(violations), random_(seed), desk_faults_(seed, [](const std::string&) {}) {}

void AnsweringMcu::Plan(const std::string& code, milliseconds delay) {
  const std::lock_guard<std::mutex> lock(mutex_);
  plans_[code].push_back(delay);
}

void AnsweringMcu::ForgetPlans() {
  const std::lock_guard<std::mutex> lock(mutex_);
  plans_.clear();
}

void AnsweringMcu::ForgetLateAnswer() {
  const std::lock_guard<std::mutex> lock(mutex_);
  late_.clear();
}

Reply AnsweringMcu::Answer(std::string_view command) {
  const std::lock_guard<std::mutex> lock(mutex_);
  const std::uint64_t running = ++commands_;
  Exchange exchange;
  exchange.code = FindWireCode(command);
  if (exchange.code == nullptr) {
    violations_.Add(fmt::format("the MCU got \"{}\", which no call sends", command));
    return Reply::Silence();
  }
  exchange.command = command;
  exchange.number = DrawNumber(*exchange.code, running);

  AnswerFault fault;
  const auto plan = plans_.find(exchange.code->code);
  if (plan != plans_.end() && !plan->second.empty()) {
    fault.delay = plan->second.front();
    plan->second.pop_front();
    fault.kind = fault.delay == kNever ? AnswerFaultKind::kSilence : AnswerFaultKind::kDelay;
    exchange.strike = fault.delay == kNever ? Strike::kSilence : Strike::kDelay;
  } else {
    exchange.strike = DrawStrike(*exchange.code);
    fault = FaultOf(exchange);
  }
  ++strikes_.at(static_cast<std::size_t>(exchange.strike));

  if (exchange.code->lane != kAnyLane) lanes_.at(exchange.code->lane)->Record(exchange);
  std::string line = AnswerText(exchange.code->form, exchange.number) + kLineEnd;
  if (exchange.code->form == AnswerForm::kTwoOks) line += line;
  return Send(exchange, std::move(line), std::move(fault));
}

Strike AnsweringMcu::DrawStrike(const WireCode& code) {
  if (!faults_on_) return Strike::kNone;
  std::uint32_t drawn = Draw(1000000);
  for (const Chance& chance : kChances) {
    if (drawn < chance.of_a_million) {
      const bool distorts = chance.strike == Strike::kGarble || chance.strike == Strike::kDrop;
      return distorts && !code.distortable ? Strike::kNone : chance.strike;
    }
    drawn -= chance.of_a_million;
  }
  return Strike::kNone;
}

AnswerFault AnsweringMcu::FaultOf(Exchange& exchange) {
  AnswerFault fault;
  switch (exchange.strike) {
    case Strike::kDelay:
      fault.kind = AnswerFaultKind::kDelay;
      fault.delay = milliseconds(1 + Draw(kLongestDelayMs));
      break;
    case Strike::kError:
      fault.kind = AnswerFaultKind::kErrorReply;
      fault.error = kErrors.at(Draw(kErrors.size()));
      exchange.error = fault.error == "ERR-M08" ? ROLU_STATUS_INVALID_PARAMETER : ROLU_STATUS_VPM_ERROR_REPLY;
      // The error is one line, and the library waits for the second one.
      if (exchange.code->form == AnswerForm::kTwoOks) exchange.error = ROLU_STATUS_VPM_NO_REPLY;
      break;
    case Strike::kGarble:
      fault.kind = AnswerFaultKind::kGarble;
      fault.count = 1 + Draw(3);
      break;
    case Strike::kDrop:
      fault.kind = AnswerFaultKind::kDropBytes;
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
  return fault;
}

Reply AnsweringMcu::Send(const Exchange& exchange, std::string line, AnswerFault fault) {
  if (exchange.strike == Strike::kNone) return SendUndisturbed(std::move(line));
  if (exchange.strike == Strike::kLate) late_ = line;
  fault.command = exchange.command;
  fault.times = 1;
  desk_faults_.Add(std::move(fault));
  return desk_faults_.Answer(exchange.command, [&line] { return Reply::Bytes(line); });
}

// In one piece: the line that is late must not be overtaken by a next command.
Reply AnsweringMcu::SendUndisturbed(std::string line) {
  if (late_.empty()) return Reply::Bytes(std::move(line));
  ++late_answers_sent_;
  return Reply::Bytes(line + std::exchange(late_, {}));
}

}  // namespace rolu_soak
