#pragma once

#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "protocol/commands.h"
#include "simulator/line/answer_faults.h"
#include "simulator/line/reply.h"
#include "soak/dice.h"
#include "soak/judgement.h"
#include "soak/operations.h"

namespace rolu_soak {

// What becomes of a command at the MCU.
enum class Strike { kNone, kDelay, kSilence, kLate, kError, kGarble, kDrop, kLongLine };

// How the MCU answers the next command that begins like this.
struct PlannedAnswer {
  std::string command;
  std::chrono::milliseconds delay;  // kNever: silence
};

// An answer line to the command, which is the `running`th of all. A word in it cannot be mistaken for that of
// another command, nor for an earlier one of the same command. Empty if the answer is a text, which the
// simulated MCU gives.
std::string DrawnAnswer(const rolu_protocol::Command& command, std::uint64_t running);

// Answers in place of the MCU's model: with numbers of its own, and with the desk's faults at random from
// the seed. Any thread may call any member.
//
// The wire does not say which command a line answers. A line that comes while another command is
// pending is taken for that command's answer, by any reader. So this MCU sends a late answer right after the
// next command's answer, when nothing is pending: there the library must recognise it and throw it away.
class AnsweringMcu {
 public:
  AnsweringMcu(std::uint32_t seed, Findings& violations);

  rolu_sim::Reply Answer(std::string_view command, const rolu_sim::AskModel& ask_model);

  // The commands of a lane that come between BeginCall and EndCall are those of its call. BeginCall returns
  // the last command that came before it, unasked or too late; an empty text if there was none.
  std::string BeginCall(std::size_t lane);
  std::vector<Exchange> EndCall(std::size_t lane);

  // Random faults, or none.
  void SetFaults(bool on) { faults_on_ = on; }

  static constexpr std::chrono::milliseconds kNever{-1};
  void Plan(const std::vector<PlannedAnswer>& answers);

  // For a new port, on which a late answer does not arrive any more.
  void ForgetLateAnswer();

  std::uint64_t commands() const { return commands_; }
  std::uint64_t strikes(Strike strike) const { return strikes_.at(static_cast<std::size_t>(strike)); }
  std::uint64_t late_answers_sent() const { return late_answers_sent_; }

 private:
  // With mutex_ held.
  struct Struck {
    Strike strike = Strike::kNone;
    rolu_sim::AnswerFault fault = {};
  };
  Struck Strikes(std::string_view command);
  Struck DrawStrike(std::string_view command);
  rolu_sim::Reply Send(std::string_view command, const std::string& bytes, Struck struck);

  // What a thread's call has to do with the wire.
  struct Lane {
    bool is_calling = false;
    std::vector<Exchange> exchanges = {};
    std::string uncalled = {};
  };

  Findings& violations_;
  std::mutex mutex_;
  Dice dice_;
  std::array<Lane, kLanes> lanes_;
  rolu_sim::AnswerFaults desk_faults_;
  std::vector<PlannedAnswer> plans_;
  std::string late_;
  std::atomic<bool> faults_on_{false};
  std::atomic<std::uint64_t> commands_{0};
  std::atomic<std::uint64_t> late_answers_sent_{0};
  std::array<std::atomic<std::uint64_t>, 8> strikes_{};
};

}  // namespace rolu_soak
