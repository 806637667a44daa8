#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <mutex>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/line/reply.h"

namespace rolu_sim {

enum class AnswerFaultKind {
  kSilence,     // the command is lost: not carried out, not answered
  kDelay,       // carried out, answered later
  kErrorReply,  // refused, not carried out
  kGarble,      // some characters of the answer are replaced
  kDropBytes,   // some characters of the answer are missing
  kLongLine,    // the answer's lines are filled up to a length
};

inline constexpr int kEveryCommand = -1;

// A fault of the answers to some commands. Each kind uses only some members.
struct AnswerFault {
  AnswerFaultKind kind = AnswerFaultKind::kSilence;
  std::string command;                 // which commands: those that begin with this text
  int times = kEveryCommand;           // for how many commands
  double chance = 1.0;                 // how probable the fault is for each command
  std::chrono::milliseconds delay{0};  // kDelay
  std::string error;                   // kErrorReply
  std::size_t count = 0;               // kGarble, kDropBytes: characters; kLongLine: the length
};

// Whether the fault depends on chance.
bool IsRandom(const AnswerFault& fault);

// The answer faults of one board. The same seed gives the same faults for the same commands.
// Any thread may call any member.
class AnswerFaults {
 public:
  // `report` gets a sentence for each fault that acts.
  AnswerFaults(std::uint32_t seed, std::function<void(const std::string&)> report);

  std::uint32_t seed() const { return seed_; }

  void Add(AnswerFault fault);
  void Clear();
  std::vector<AnswerFault> Present() const;

  // The reply to `command`. All matching faults act, in the order in which they were added.
  Reply Answer(std::string_view command, const AskModel& ask_model);

 private:
  // With mutex_ held.
  bool Strikes(AnswerFault& fault, std::string_view command);
  std::size_t Draw(std::size_t below);
  std::string DistortLine(const AnswerFault& fault, std::string line);
  Reply Distort(const AnswerFault& fault, const Reply& answer);

  const std::uint32_t seed_;
  const std::function<void(const std::string&)> report_;
  mutable std::mutex mutex_;
  std::mt19937 random_;
  std::vector<AnswerFault> faults_;
};

}  // namespace rolu_sim
