#include "simulator/desk/trace.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstring>
#include <iostream>
#include <stdexcept>
#include <utility>

#include "simulator/system/system_error.h"

namespace rolu_sim {
namespace {

struct DirectionName {
  TraceDirection direction;
  std::string_view name;
  char sign;
};

constexpr std::array<DirectionName, 4> kDirections = {{
    {TraceDirection::kToMcu, "to-mcu", '>'},
    {TraceDirection::kFromMcu, "from-mcu", '<'},
    {TraceDirection::kBoard, "board", '*'},
    {TraceDirection::kDesk, "desk", '+'},
}};

const DirectionName& NameOf(TraceDirection direction) {
  return *std::ranges::find(kDirections, direction, &DirectionName::direction);
}

const Json& Member(const Json& object, const char* name, bool (Json::*has_type)() const noexcept,
                   const char* type) {
  const auto member = object.find(name);
  if (member == object.end()) throw std::invalid_argument(fmt::format("\"{}\" is missing", name));
  if (!((*member).*has_type)()) throw std::invalid_argument(fmt::format("\"{}\" is not {}", name, type));
  return *member;
}

std::string TextMember(const Json& object, const char* name) {
  return Member(object, name, &Json::is_string, "a text").get<std::string>();
}

UniqueFd OpenForWriting(const std::string& path) {
  UniqueFd file(path == "-" ? fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 0)
                            : open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666));
  if (!file) ThrowErrno("writing the trace to " + path);
  return file;
}

bool WriteAll(int fd, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = write(fd, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

}  // namespace

bool IsOnWire(TraceDirection direction) {
  return direction == TraceDirection::kToMcu || direction == TraceDirection::kFromMcu;
}

std::string Printable(std::string_view bytes) {
  std::string text;
  for (const char byte : bytes) {
    if (byte >= ' ' && byte <= '~') {
      text += byte;
    } else {
      text += fmt::format("\\x{:02X}", static_cast<unsigned char>(byte));
    }
  }
  return text;
}

std::string ToHex(std::string_view bytes) {
  std::string text;
  for (const char byte : bytes) text += fmt::format("{:02X}", static_cast<unsigned char>(byte));
  return text;
}

std::optional<std::string> BytesFromHex(std::string_view digits) {
  std::string bytes;
  for (; digits.size() >= 2; digits.remove_prefix(2)) {
    unsigned value = 0;
    const char* const end = digits.data() + 2;
    if (std::from_chars(digits.data(), end, value, 16).ptr != end) return std::nullopt;
    bytes += static_cast<char>(value);
  }
  return digits.empty() ? std::optional(bytes) : std::nullopt;
}

std::string ToText(const TraceRecord& record) {
  const double seconds = std::chrono::duration<double>(record.time).count();
  const char sign = NameOf(record.direction).sign;
  if (!IsOnWire(record.direction)) {
    return fmt::format("{:12.6f} {} {}", seconds, sign, record.words);
  }
  return fmt::format("{:12.6f} {} {:<18}  {}", seconds, sign, Printable(record.line), record.words);
}

Json ToJson(const TraceRecord& record) {
  const double seconds = std::round(std::chrono::duration<double>(record.time).count() * 1e6) / 1e6;
  Json object = {{"t_s", seconds}, {"direction", NameOf(record.direction).name}};
  const std::string line = Printable(record.line);
  if (IsOnWire(record.direction)) object["line"] = line;
  if (line != record.line) object["hex"] = ToHex(record.line);
  object["words"] = record.words;
  return object;
}

TraceRecord TraceRecordFromJson(const Json& object) {
  if (!object.is_object()) throw std::invalid_argument("a line of a trace is an object");
  TraceRecord record;
  const double seconds = Member(object, "t_s", &Json::is_number, "a number").get<double>();
  constexpr double kLongestTrace = 1e8;
  if (!(seconds >= 0 && seconds <= kLongestTrace)) {
    throw std::invalid_argument("\"t_s\" is not from 0 to 100000000");
  }
  record.time = std::chrono::duration_cast<std::chrono::nanoseconds>(std::chrono::duration<double>(seconds));
  const auto* const known =
      std::ranges::find(kDirections, TextMember(object, "direction"), &DirectionName::name);
  if (known == kDirections.end()) {
    throw std::invalid_argument(R"("direction" is not "to-mcu", "from-mcu", "board" or "desk")");
  }
  record.direction = known->direction;
  if (object.contains("hex")) {
    const std::optional<std::string> bytes = BytesFromHex(TextMember(object, "hex"));
    if (!bytes) throw std::invalid_argument("\"hex\" is not pairs of hex digits");
    record.line = *bytes;
  } else if (IsOnWire(record.direction)) {
    record.line = TextMember(object, "line");
  }
  if (object.contains("words")) record.words = TextMember(object, "words");
  return record;
}

std::string FormatLine(const TraceRecord& record, TraceFormat format) {
  return (format == TraceFormat::kJson ? ToJson(record).dump() : ToText(record)) + '\n';
}

TraceWriter::TraceWriter(const std::string& path, TraceFormat format)
    : path_(path), format_(format), file_(OpenForWriting(path)) {}

void TraceWriter::Write(const TraceRecord& record) {
  if (failed_ || WriteAll(file_.get(), FormatLine(record, format_))) return;
  failed_ = true;
  std::cerr << "rolu-sim: writing the trace to " << path_ << ": " << std::strerror(errno)
            << "; it ends here\n";
}

void Trace::RecordLine(const WireEvent& line) {
  const std::lock_guard<std::mutex> lock(mutex_);
  const bool is_command = line.direction == Direction::kToMcu;
  Add({line.time - start_, is_command ? TraceDirection::kToMcu : TraceDirection::kFromMcu, line.bytes,
       is_command ? words_.OfCommand(line.bytes) : words_.OfAnswer(line.bytes)});
}

void Trace::RecordEvent(TraceDirection direction, std::string words) {
  const std::lock_guard<std::mutex> lock(mutex_);
  Add({std::chrono::steady_clock::now() - start_, direction, {}, std::move(words)});
}

void Trace::AddListener(Listener listener) {
  const std::lock_guard<std::mutex> lock(mutex_);
  listeners_.push_back(std::move(listener));
}

Trace::Excerpt Trace::From(std::uint64_t from, std::size_t limit) const {
  const std::lock_guard<std::mutex> lock(mutex_);
  Excerpt excerpt;
  excerpt.first = std::max(from, first_);
  const std::uint64_t end = std::min(first_ + records_.size(), excerpt.first + limit);
  for (std::uint64_t number = excerpt.first; number < end; ++number) {
    excerpt.records.push_back(records_[static_cast<std::size_t>(number - first_)]);
  }
  return excerpt;
}

std::uint64_t Trace::Count() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return first_ + records_.size();
}

// Programs and faults may put any bytes on the wire, so the words for a line may hold them too.
void Trace::Add(TraceRecord record) {
  record.words = Printable(record.words);
  for (const Listener& listener : listeners_) listener(record);
  if (records_.size() == kCapacity) {
    records_.pop_front();
    ++first_;
  }
  records_.push_back(std::move(record));
}

}  // namespace rolu_sim
