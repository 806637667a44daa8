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
  kGarble,      // some characters of the answer are others
  kDropBytes,   // some characters of the answer are missing
  kLongLine,    // the answer's lines are filled up to a length
};

inline constexpr int kEveryCommand = -1;

// A fault of the answers to some commands. What a kind does not use is not looked at.
struct AnswerFault {
  AnswerFaultKind kind = AnswerFaultKind::kSilence;
  std::string command;                 // which commands: those that begin like this
  int times = kEveryCommand;           // how many of them
  double chance = 1.0;                 // how probable it is for each of those
  std::chrono::milliseconds delay{0};  // kDelay
  std::string error;                   // kErrorReply
  std::size_t count = 0;               // kGarble, kDropBytes: characters; kLongLine: the length
};

// Whether chance decides what the fault does.
bool IsRandom(const AnswerFault& fault);

// The answer faults of one board. The same seed gives the same faults for the same commands.
// Any thread may call any member.
class AnswerFaults {
 public:
  // `report` hears in words what each fault did.
  AnswerFaults(std::uint32_t seed, std::function<void(const std::string&)> report);

  std::uint32_t seed() const { return seed_; }

  void Add(AnswerFault fault);
  void Clear();
  std::vector<AnswerFault> Present() const;

  // What is sent for `command`. Faults that match act one after another, in the order they were added.
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
