#include "simulator/line/answer_faults.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <utility>

namespace rolu_sim {
namespace {

bool IsLineEnd(char byte) {
  return kLineEnd.find(byte) != std::string_view::npos;
}

// The words of each kind, with the command {0} and the fault's count {1}, delay {2} and error {3}.
constexpr std::array<std::string_view, 6> kWords = {
    "fault: {0} is lost",
    "fault: the answer to {0} comes {2} ms later",
    "fault: {0} is answered with {3}",
    "fault: {1} characters of the answer to {0} are garbled",
    "fault: {1} characters of the answer to {0} are lost",
    "fault: the answer to {0} is {1} characters long",
};

}  // namespace

bool IsRandom(const AnswerFault& fault) {
  return fault.chance < 1.0 || fault.kind == AnswerFaultKind::kGarble ||
         fault.kind == AnswerFaultKind::kDropBytes;
}

AnswerFaults::AnswerFaults(std::uint32_t seed, std::function<void(const std::string&)> report)
    : seed_(seed), report_(std::move(report)), random_(seed) {}

void AnswerFaults::Add(AnswerFault fault) {
  const std::lock_guard<std::mutex> lock(mutex_);
  faults_.push_back(std::move(fault));
}

void AnswerFaults::Clear() {
  const std::lock_guard<std::mutex> lock(mutex_);
  faults_.clear();
}

std::vector<AnswerFault> AnswerFaults::Present() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return faults_;
}

Reply AnswerFaults::Answer(std::string_view command, const AskModel& ask_model) {
  const std::lock_guard<std::mutex> lock(mutex_);
  std::vector<AnswerFault> striking;
  for (AnswerFault& fault : faults_) {
    if (Strikes(fault, command)) striking.push_back(fault);
  }
  std::erase_if(faults_, [](const AnswerFault& fault) { return fault.times == 0; });

  for (const AnswerFault& fault : striking) {
    report_(fmt::format(fmt::runtime(kWords[static_cast<std::size_t>(fault.kind)]), command, fault.count,
                        fault.delay.count(), fault.error));
  }
  if (std::ranges::find(striking, AnswerFaultKind::kSilence, &AnswerFault::kind) != striking.end()) {
    return Reply::Silence();
  }
  const auto error = std::ranges::find(striking, AnswerFaultKind::kErrorReply, &AnswerFault::kind);
  Reply answer = error == striking.end() ? ask_model() : Reply::Line(error->error);
  for (const AnswerFault& fault : striking) answer = Distort(fault, answer);
  return answer;
}

bool AnswerFaults::Strikes(AnswerFault& fault, std::string_view command) {
  if (!command.starts_with(fault.command)) return false;
  if (fault.chance < 1.0) {
    constexpr double kOutcomes = 4294967296.0;
    if (static_cast<double>(random_()) >= fault.chance * kOutcomes) return false;
  }
  if (fault.times != kEveryCommand) --fault.times;
  return true;
}

// The distributions of the standard library may change from version to version; this function does not.
std::size_t AnswerFaults::Draw(std::size_t below) {
  return static_cast<std::size_t>(random_()) % below;
}

std::string AnswerFaults::DistortLine(const AnswerFault& fault, std::string line) {
  switch (fault.kind) {
    case AnswerFaultKind::kGarble:
      for (std::size_t i = 0; i < fault.count; ++i) {
        char& victim = line[Draw(line.size())];
        char byte = victim;
        while (byte == victim || byte == '\0' || IsLineEnd(byte)) byte = static_cast<char>(Draw(256));
        victim = byte;
      }
      break;
    case AnswerFaultKind::kDropBytes:
      for (std::size_t i = 0; i < fault.count && !line.empty(); ++i) line.erase(Draw(line.size()), 1);
      break;
    case AnswerFaultKind::kLongLine:
      line.resize(std::max(line.size(), fault.count), 'X');
      break;
    case AnswerFaultKind::kSilence:
    case AnswerFaultKind::kDelay:
    case AnswerFaultKind::kErrorReply:
      break;
  }
  return line;
}

Reply AnswerFaults::Distort(const AnswerFault& fault, const Reply& answer) {
  std::chrono::microseconds later =
      fault.kind == AnswerFaultKind::kDelay ? fault.delay : std::chrono::microseconds(0);
  Reply distorted;
  for (const auto& [bytes, delay] : answer.chunks()) {
    std::string changed;
    for (auto at = bytes.begin(); at != bytes.end();) {
      const auto end = std::find_if(at, bytes.end(), IsLineEnd);
      if (end != at) changed += DistortLine(fault, std::string(at, end));
      at = std::find_if_not(end, bytes.end(), IsLineEnd);
      changed.append(end, at);
    }
    distorted = std::move(distorted).Then(std::move(changed), delay + std::exchange(later, {}));
  }
  return distorted;
}

}  // namespace rolu_sim
