#include "simulator/devices/gpio.h"

#include <fmt/format.h>

#include <atomic>
#include <limits>

#include "protocol/values.h"
#include "simulator/devices/board_paths.h"

namespace rolu_sim {

struct Gpio::Line {
  std::atomic<bool> exported{false};
  std::atomic<bool> is_output{false};
  std::atomic<bool> driven_by_program{false};
  std::atomic<bool> driven_from_outside{false};

  bool Level() const { return is_output ? driven_by_program : driven_from_outside; }
};

namespace {

constexpr int kHighestLine = 1023;

// Each of the names for an output ("out", "low", "high") sets the level anew, even if the line was an output
// before.
DeviceResult StoreDirection(Gpio::Line& line, std::string_view text) {
  const bool to_output = text == "out" || text == "low" || text == "high";
  if (!to_output && text != "in") return -EINVAL;
  if (to_output) line.driven_by_program = text == "high";
  line.is_output = to_output;
  return 0;
}

DeviceResult StoreValue(Gpio::Line& line, std::string_view text) {
  if (!line.is_output) return -EPERM;
  const int level = ParseKernelNumber(text, std::numeric_limits<int>::max());
  if (level < 0) return level;
  line.driven_by_program = level != 0;
  return 0;
}

DeviceResult Export(const Gpio::Lines& lines, DeviceServer& server, std::string_view text) {
  const auto found = lines.find(ParseKernelNumber(text, kHighestLine));
  if (found == lines.end()) return -EINVAL;
  const auto& [number, line] = *found;
  if (line->exported.exchange(true)) return -EBUSY;
  server.AddNode(
      GpioPath(number, "direction"),
      std::make_shared<Attribute>([line = line] { return line->is_output ? "out\n" : "in\n"; },
                                  [line = line](auto words) { return StoreDirection(*line, words); }));
  server.AddNode(GpioPath(number, "value"),
                 std::make_shared<Attribute>([line = line] { return line->Level() ? "1\n" : "0\n"; },
                                             [line = line](auto words) { return StoreValue(*line, words); }));
  return 0;
}

}  // namespace

std::string GpioPath(int line, std::string_view attribute) {
  return fmt::format("{}/gpio{}/{}", kGpioDirectory, line, attribute);
}

Gpio::Gpio(DeviceServer& server) : server_(server) {
  for (const int number : rolu_protocol::kGpioLines) lines_[number] = std::make_shared<Line>();
  server.AddNode(kGpioExportPath,
                 std::make_shared<Attribute>(nullptr, [lines = lines_, &server](std::string_view text) {
                   return Export(lines, server, text);
                 }));
}

bool Gpio::IsExported(int line) const {
  return lines_.at(line)->exported;
}

bool Gpio::IsOutput(int line) const {
  return lines_.at(line)->is_output;
}

bool Gpio::Level(int line) const {
  return lines_.at(line)->Level();
}

void Gpio::SetInput(int line, bool high) {
  lines_.at(line)->driven_from_outside = high;
}

void Gpio::Restart() {
  for (const auto& [number, line] : lines_) {
    for (const char* const attribute : kGpioAttributes) server_.RemoveNode(GpioPath(number, attribute));
    line->is_output = false;
    line->driven_by_program = false;
    line->exported = false;
  }
}

}  // namespace rolu_sim
