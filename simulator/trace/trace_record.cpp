#include "simulator/trace/trace_record.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <iostream>
#include <stdexcept>
#include <string_view>

#include "simulator/system_error.h"
#include "simulator/trace/printable.h"

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
  return *std::find_if(kDirections.begin(), kDirections.end(),
                       [&](const DirectionName& entry) { return entry.direction == direction; });
}

bool IsOnWire(TraceDirection direction) {
  return direction == TraceDirection::kToMcu || direction == TraceDirection::kFromMcu;
}

double InSeconds(std::chrono::nanoseconds time) {
  return std::chrono::duration<double>(time).count();
}

const Json& Member(const Json& object, const char* name, bool (Json::*has_type)() const noexcept,
                   const char* type) {
  const auto member = object.find(name);
  if (member == object.end()) throw std::invalid_argument(fmt::format("\"{}\" is missing", name));
  if (!((*member).*has_type)()) throw std::invalid_argument(fmt::format("\"{}\" is not {}", name, type));
  return *member;
}

std::string BytesFromHex(const std::string& digits) {
  std::string bytes;
  for (std::size_t at = 0; at + 2 <= digits.size(); at += 2) {
    unsigned value = 0;
    const char* const end = digits.data() + at + 2;
    if (std::from_chars(digits.data() + at, end, value, 16).ptr != end) break;
    bytes += static_cast<char>(value);
  }
  if (bytes.size() * 2 != digits.size()) throw std::invalid_argument("\"hex\" is not pairs of hex digits");
  return bytes;
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

std::string ToText(const TraceRecord& record) {
  const double seconds = InSeconds(record.time);
  const char sign = NameOf(record.direction).sign;
  if (!IsOnWire(record.direction)) {
    return fmt::format("{:12.6f} {} {}", seconds, sign, record.words);
  }
  return fmt::format("{:12.6f} {} {:<18}  {}", seconds, sign, Printable(record.line), record.words);
}

Json ToJson(const TraceRecord& record) {
  const double seconds = std::round(InSeconds(record.time) * 1e6) / 1e6;
  Json object = {{"t_s", seconds}, {"direction", NameOf(record.direction).name}};
  if (IsOnWire(record.direction)) object["line"] = Printable(record.line);
  if (!IsPrintable(record.line)) object["hex"] = ToHex(record.line);
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
  const std::string direction = Member(object, "direction", &Json::is_string, "a text").get<std::string>();
  const auto* const known = std::find_if(kDirections.begin(), kDirections.end(),
                                         [&](const DirectionName& entry) { return entry.name == direction; });
  if (known == kDirections.end()) {
    throw std::invalid_argument(R"("direction" is not "to-mcu", "from-mcu", "board" or "desk")");
  }
  record.direction = known->direction;
  if (object.contains("hex")) {
    record.line = BytesFromHex(Member(object, "hex", &Json::is_string, "a text").get<std::string>());
  } else if (IsOnWire(record.direction)) {
    record.line = Member(object, "line", &Json::is_string, "a text").get<std::string>();
  }
  if (object.contains("words")) {
    record.words = Member(object, "words", &Json::is_string, "a text").get<std::string>();
  }
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

}  // namespace rolu_sim
