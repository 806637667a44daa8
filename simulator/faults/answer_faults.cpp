#include "simulator/faults/answer_faults.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace rolu_sim {
namespace {

bool IsLineEnd(char byte) {
  return byte == '\r' || byte == '\n';
}

// Changes the text of each line, not the line ends.
template <typename Change>
std::string ChangeLines(const std::string& bytes, Change change) {
  std::string changed;
  for (auto at = bytes.begin(); at != bytes.end();) {
    const auto end = std::find_if(at, bytes.end(), IsLineEnd);
    if (end != at) changed += change(std::string(at, end));
    at = std::find_if_not(end, bytes.end(), IsLineEnd);
    changed.append(end, at);
  }
  return changed;
}

// The reply with every chunk's bytes changed, the first one sent `later`.
template <typename Change>
Reply Rebuild(const Reply& reply, std::chrono::milliseconds later, Change change) {
  Reply rebuilt;
  for (const ReplyChunk& chunk : reply.chunks()) {
    rebuilt = std::move(rebuilt).Then(change(chunk.bytes), chunk.delay + later);
    later = std::chrono::milliseconds(0);
  }
  return rebuilt;
}

std::string Describe(const AnswerFault& fault, std::string_view command) {
  switch (fault.kind) {
    case AnswerFaultKind::kSilence:
      return fmt::format("fault: {} is lost", command);
    case AnswerFaultKind::kDelay:
      return fmt::format("fault: the answer to {} comes {} ms later", command, fault.delay.count());
    case AnswerFaultKind::kErrorReply:
      return fmt::format("fault: {} is answered with {}", command, fault.error);
    case AnswerFaultKind::kGarble:
      return fmt::format("fault: {} characters of the answer to {} are garbled", fault.count, command);
    case AnswerFaultKind::kDropBytes:
      return fmt::format("fault: {} characters of the answer to {} are lost", fault.count, command);
    case AnswerFaultKind::kLongLine:
      return fmt::format("fault: the answer to {} is {} characters long", command, fault.count);
  }
  return {};
}

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
  faults_.erase(std::remove_if(faults_.begin(), faults_.end(),
                               [](const AnswerFault& fault) { return fault.times == 0; }),
                faults_.end());

  for (const AnswerFault& fault : striking) report_(Describe(fault, command));
  const auto is = [](AnswerFaultKind kind) {
    return [kind](const AnswerFault& fault) { return fault.kind == kind; };
  };
  if (std::any_of(striking.begin(), striking.end(), is(AnswerFaultKind::kSilence))) return Reply::Silence();
  const auto error = std::find_if(striking.begin(), striking.end(), is(AnswerFaultKind::kErrorReply));
  Reply answer = error == striking.end() ? ask_model() : Reply::Line(error->error);
  for (const AnswerFault& fault : striking) answer = Distort(fault, answer);
  return answer;
}

bool AnswerFaults::Strikes(AnswerFault& fault, std::string_view command) {
  if (command.substr(0, fault.command.size()) != fault.command) return false;
  if (fault.chance < 1.0) {
    constexpr double kOutcomes = 4294967296.0;
    if (static_cast<double>(random_()) >= fault.chance * kOutcomes) return false;
  }
  if (fault.times != kEveryCommand) --fault.times;
  return true;
}

// The library's distributions may differ between its versions; this does not.
std::size_t AnswerFaults::Draw(std::size_t below) {
  return static_cast<std::size_t>(random_()) % below;
}

std::string AnswerFaults::Garbled(std::string line, std::size_t characters) {
  for (; characters > 0; --characters) {
    char& victim = line[Draw(line.size())];
    char byte = victim;
    while (byte == victim || byte == '\0' || IsLineEnd(byte)) byte = static_cast<char>(Draw(256));
    victim = byte;
  }
  return line;
}

std::string AnswerFaults::Shortened(std::string line, std::size_t characters) {
  for (; characters > 0 && !line.empty(); --characters) line.erase(Draw(line.size()), 1);
  return line;
}

Reply AnswerFaults::Distort(const AnswerFault& fault, const Reply& answer) {
  using std::chrono::milliseconds;
  const auto change_lines = [&](auto change) {
    return Rebuild(answer, milliseconds(0),
                   [&](const std::string& bytes) { return ChangeLines(bytes, change); });
  };
  switch (fault.kind) {
    case AnswerFaultKind::kDelay:
      return Rebuild(answer, fault.delay, [](const std::string& bytes) { return bytes; });
    case AnswerFaultKind::kGarble:
      return change_lines([&](std::string line) { return Garbled(std::move(line), fault.count); });
    case AnswerFaultKind::kDropBytes:
      return change_lines([&](std::string line) { return Shortened(std::move(line), fault.count); });
    case AnswerFaultKind::kLongLine:
      return change_lines([&](std::string line) {
        line.resize(std::max(line.size(), fault.count), 'X');
        return line;
      });
    case AnswerFaultKind::kSilence:
    case AnswerFaultKind::kErrorReply:
      break;
  }
  return answer;
}

}  // namespace rolu_sim
