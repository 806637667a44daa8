#ifndef SOAK_ANSWERING_MCU_H
#define SOAK_ANSWERING_MCU_H

#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <mutex>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/line/answer_faults.h"
#include "simulator/line/reply.h"
#include "soak/findings.h"
#include "soak/lane.h"
#include "soak/operations.h"

namespace rolu_soak {

// What becomes of a command at the MCU.
enum class Strike { kNone, kDelay, kSilence, kLate, kError, kGarble, kDrop, kLongLine };

// How the MCU answers the next command that begins like this.
struct PlannedAnswer {
  std::string command;
  std::chrono::milliseconds delay;  // kNever: silence
};

using Lanes = std::array<std::unique_ptr<Lane>, kLanes>;

// What answers in place of the MCU's model: numbers of its own, and the desk's faults at random from
// the seed. Any thread may call any member.
//
// The wire does not say which command a line answers. A line that comes while another command is
// pending is taken for that one's answer, by any reader; so a late answer comes here right behind the
// next command's, when nothing is pending: there it must be recognised and thrown away.
class AnsweringMcu {
 public:
  AnsweringMcu(std::uint32_t seed, const Lanes& lanes, Findings& violations);

  rolu_sim::Reply Answer(std::string_view command, const rolu_sim::AskModel& ask_model);

  // Random faults, or none.
  void SetFaults(bool on) { faults_on_ = on; }

  static constexpr std::chrono::milliseconds kNever{-1};
  void Plan(const std::vector<PlannedAnswer>& answers);
  void ForgetPlans() { Plan({}); }

  // The port is a new one: what was late is lost.
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
  rolu_sim::Reply Send(std::string_view command, std::string bytes, Struck struck);
  rolu_sim::Reply SendUndisturbed(std::string bytes);
  std::uint32_t Draw(std::uint32_t below) { return static_cast<std::uint32_t>(random_()) % below; }

  const Lanes& lanes_;
  Findings& violations_;
  std::mutex mutex_;
  std::mt19937 random_;
  rolu_sim::AnswerFaults desk_faults_;
  std::vector<PlannedAnswer> plans_;
  std::string late_;
  std::atomic<bool> faults_on_{false};
  std::atomic<std::uint64_t> commands_{0};
  std::atomic<std::uint64_t> late_answers_sent_{0};
  std::array<std::atomic<std::uint64_t>, 8> strikes_{};
};

}  // namespace rolu_soak

#endif  // SOAK_ANSWERING_MCU_H
