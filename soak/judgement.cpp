#include "soak/judgement.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "soak/processor_waits.h"

namespace rolu_soak {
namespace {

struct StatusName {
  ROLU_STATUS status;
  const char* name;
};
constexpr StatusName kStatusNames[] = {
    {ROLU_STATUS_SUCCESS, "success"},
    {ROLU_STATUS_INVALID_PARAMETER, "invalid parameter"},
    {ROLU_STATUS_NOT_INITIALIZED, "not initialised"},
    {ROLU_STATUS_TIMEOUT, "time-out"},
    {ROLU_STATUS_FILE_ACCESS_FAILED, "file access failed"},
    {ROLU_STATUS_DEVICE_OPEN_FAILED, "device open failed"},
    {ROLU_STATUS_ALREADY_INITIALIZED, "already initialised"},
    {ROLU_STATUS_VPM_UNKNOWN_VALUE, "unknown value"},
    {ROLU_STATUS_VPM_OPEN_FAILED, "open failed"},
    {ROLU_STATUS_VPM_ERROR_REPLY, "error reply"},
    {ROLU_STATUS_VPM_SEND_FAILED, "send failed"},
    {ROLU_STATUS_VPM_INVALID_REPLY, "invalid reply"},
    {ROLU_STATUS_VPM_NO_REPLY, "no reply"},
    {ROLU_STATUS_GSENSOR_DATA_UNAVAILABLE, "no sample"},
    {ROLU_STATUS_GSENSOR_INVALID_REPLY, "invalid G-sensor reply"},
    {ROLU_STATUS_GSENSOR_ALARM_ALREADY_ENABLED, "alarm already on"},
    {ROLU_STATUS_GSENSOR_NO_ALARM_DATA, "no alarm sample"},
};

// What a call may make of an answer with wrong characters in it, or too few of them.
constexpr std::array<ROLU_STATUS, 8> kAfterDistortion = {ROLU_STATUS_SUCCESS,
                                                         ROLU_STATUS_VPM_NO_REPLY,
                                                         ROLU_STATUS_VPM_ERROR_REPLY,
                                                         ROLU_STATUS_VPM_INVALID_REPLY,
                                                         ROLU_STATUS_VPM_UNKNOWN_VALUE,
                                                         ROLU_STATUS_GSENSOR_DATA_UNAVAILABLE,
                                                         ROLU_STATUS_FILE_ACCESS_FAILED,
                                                         ROLU_STATUS_GSENSOR_INVALID_REPLY};

bool IsUnanswered(ROLU_STATUS status) {
  return status == ROLU_STATUS_VPM_NO_REPLY || status == ROLU_STATUS_VPM_OPEN_FAILED;
}

std::chrono::nanoseconds ExplanationOf(ROLU_STATUS status) {
  return IsUnanswered(status) ? std::chrono::nanoseconds(kStarved) : Fault::kUnexplained;
}

bool IsDistorted(const Exchange& exchange) {
  return exchange.strike == Strike::kGarble || exchange.strike == Strike::kDrop;
}

// The first command that fails decides.
ROLU_STATUS ExpectedStatus(const CallFacts& facts) {
  for (const Exchange& exchange : facts.exchanges) {
    if (!exchange.code->decides || exchange.code->code == facts.ignored_code) continue;
    switch (exchange.strike) {
      case Strike::kSilence:
      case Strike::kLate:
      case Strike::kLongLine:
        return ROLU_STATUS_VPM_NO_REPLY;
      case Strike::kError:
        return exchange.error;
      default:
        break;
    }
  }
  return ROLU_STATUS_SUCCESS;
}

std::string Commands(const std::vector<Exchange>& exchanges) {
  std::string text;
  for (const Exchange& exchange : exchanges) {
    text += fmt::format("{}{} (answer {})", text.empty() ? "" : ", ", exchange.command,
                        AnswerText(exchange.code->form, exchange.number));
  }
  return text.empty() ? "none" : text;
}

}  // namespace

std::string StatusText(ROLU_STATUS status) {
  const auto* const known = std::find_if(std::begin(kStatusNames), std::end(kStatusNames),
                                         [status](const StatusName& row) { return row.status == status; });
  return known == std::end(kStatusNames) ? fmt::format("0x{:04X}", status) : known->name;
}

Fault FaultIn(const CallFacts& facts) {
  if (!facts.family_was_up) {
    if (facts.status == ROLU_STATUS_NOT_INITIALIZED && facts.exchanges.empty()) return {};
    return {fmt::format("\"{}\" of a family that is down; commands: {}", StatusText(facts.status),
                        Commands(facts.exchanges))};
  }
  if (facts.port_was_dead && IsUnanswered(facts.status)) return {};
  if (facts.link_was_busy && facts.status == ROLU_STATUS_VPM_OPEN_FAILED && facts.exchanges.empty())
    return {};
  const ROLU_STATUS expected = ExpectedStatus(facts);
  if (std::any_of(facts.exchanges.begin(), facts.exchanges.end(), IsDistorted)) {
    if (std::find(kAfterDistortion.begin(), kAfterDistortion.end(), facts.status) != kAfterDistortion.end()) {
      return {};
    }
    // An error may come with the command after the distorted one.
    if (facts.status == expected) return {};
    return {fmt::format("\"{}\" after a distorted answer; commands: {}", StatusText(facts.status),
                        Commands(facts.exchanges)),
            ExplanationOf(facts.status)};
  }
  if (facts.status != expected) {
    return {fmt::format(R"("{}", not "{}"; commands: {})", StatusText(facts.status), StatusText(expected),
                        Commands(facts.exchanges)),
            ExplanationOf(facts.status)};
  }
  if (facts.status == ROLU_STATUS_SUCCESS && !facts.right) {
    return {fmt::format("a value that is not the answer to it, or an order that is not the one; commands: {}",
                        Commands(facts.exchanges))};
  }
  return {};
}

}  // namespace rolu_soak
