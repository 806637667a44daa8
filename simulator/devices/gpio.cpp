#include "simulator/devices/gpio.h"

#include <fmt/format.h>

#include <atomic>
#include <limits>
#include <utility>

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

class Direction : public Attribute {
 public:
  explicit Direction(std::shared_ptr<Gpio::Line> line) : Attribute(0644), line_(std::move(line)) {}

 private:
  std::string Show() override { return line_->is_output ? "out\n" : "in\n"; }

  // An output of any of the three names begins at the level that goes with it, also one that was an
  // output before.
  DeviceResult Store(std::string_view text) override {
    const bool to_output = text == "out" || text == "low" || text == "high";
    if (!to_output && text != "in") return -EINVAL;
    if (to_output) line_->driven_by_program = text == "high";
    line_->is_output = to_output;
    return 0;
  }

  const std::shared_ptr<Gpio::Line> line_;
};

class Value : public Attribute {
 public:
  explicit Value(std::shared_ptr<Gpio::Line> line) : Attribute(0644), line_(std::move(line)) {}

 private:
  std::string Show() override { return line_->Level() ? "1\n" : "0\n"; }

  DeviceResult Store(std::string_view text) override {
    if (!line_->is_output) return -EPERM;
    const int level = ParseKernelNumber(text, std::numeric_limits<int>::max());
    if (level < 0) return level;
    line_->driven_by_program = level != 0;
    return 0;
  }

  const std::shared_ptr<Gpio::Line> line_;
};

class Export : public Attribute {
 public:
  Export(Gpio::Lines lines, DeviceServer& server)
      : Attribute(0200), lines_(std::move(lines)), server_(server) {}

 private:
  DeviceResult Store(std::string_view text) override {
    const auto found = lines_.find(ParseKernelNumber(text, kHighestLine));
    if (found == lines_.end()) return -EINVAL;
    const auto& [number, line] = *found;
    if (line->exported.exchange(true)) return -EBUSY;
    server_.AddNode(GpioPath(number, "direction"), std::make_shared<Direction>(line));
    server_.AddNode(GpioPath(number, "value"), std::make_shared<Value>(line));
    return 0;
  }

  const Gpio::Lines lines_;
  DeviceServer& server_;
};

}  // namespace

std::string GpioPath(int line, std::string_view attribute) {
  return fmt::format("{}/gpio{}/{}", kGpioDirectory, line, attribute);
}

Gpio::Gpio(DeviceServer& server) {
  for (const int number : rolu_protocol::kGpioLines) lines_[number] = std::make_shared<Line>();
  server.AddNode(kGpioExportPath, std::make_shared<Export>(lines_, server));
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

}  // namespace rolu_sim
