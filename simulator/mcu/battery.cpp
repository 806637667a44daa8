#include "simulator/mcu/battery.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <sstream>
#include <stdexcept>
#include <string>

#include "cli/duration.h"

namespace rolu_sim {
namespace {

[[noreturn]] void Refuse(const std::string& word, const std::string& why) {
  throw std::invalid_argument("\"" + word + "\": " + why);
}

double ParseNumber(const std::string& word, std::string_view text) {
  double number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc{} || end != text.data() + text.size() || !std::isfinite(number)) {
    Refuse(word, "\"" + std::string(text) + "\" is not a number");
  }
  return number;
}

VoltageCurve::Point ParsePoint(const std::string& word) {
  const std::size_t equals = word.find('=');
  if (equals == std::string::npos) Refuse(word, "a point is a time and a voltage, as in 2s=12.6");
  const std::string_view text = word;
  const auto time = rolu::ParseDuration(text.substr(0, equals));
  if (!time) Refuse(word, std::string("a time needs a unit, such as ") + rolu::kDurationExamples);
  const double volts = ParseNumber(word, text.substr(equals + 1));
  if (volts < 0 || volts > VoltageCurve::kMaxVolts) Refuse(word, "a voltage is from 0 to 100");
  return {*time, volts};
}

// The index of an electrical system in tables.
std::size_t IndexOf(BatteryMode mode) {
  return mode == BatteryMode::k24V ? 0 : 1;
}

}  // namespace

VoltageCurve VoltageCurve::Parse(std::string_view text) {
  std::vector<Point> points;
  std::istringstream words{std::string(text)};
  std::string word;
  while (words >> word) {
    const Point point = ParsePoint(word);
    if (!points.empty() && point.at <= points.back().at) {
      Refuse(word, "the times must grow from point to point");
    }
    points.push_back(point);
  }
  if (points.empty()) throw std::invalid_argument("a curve has at least one point, as in 0s=12.6 2s=11.0");
  return VoltageCurve(std::move(points));
}

double VoltageCurve::VoltsAt(std::chrono::nanoseconds elapsed) const {
  const auto to = std::ranges::upper_bound(points_, elapsed, {}, &Point::at);
  if (to == points_.begin()) return to->volts;
  const Point& from = *(to - 1);
  if (to == points_.end()) return from.volts;
  const double share =
      std::chrono::duration<double>(elapsed - from.at) / std::chrono::duration<double>(to->at - from.at);
  return from.volts + (to->volts - from.volts) * share;
}

std::optional<std::chrono::nanoseconds> VoltageCurve::NextCrossing(double volts,
                                                                   std::chrono::nanoseconds elapsed) const {
  const bool is_below = VoltsAt(elapsed) < volts;
  for (std::size_t next = 1; next < points_.size(); ++next) {
    const Point& from = points_[next - 1];
    const Point& to = points_[next];
    if (elapsed >= to.at || (to.volts < volts) == is_below) continue;
    const double share = (volts - from.volts) / (to.volts - from.volts);
    const auto since_from = std::chrono::duration<double>(to.at - from.at) * share;
    return from.at + std::chrono::duration_cast<std::chrono::nanoseconds>(since_from);
  }
  return std::nullopt;
}

const rolu_protocol::BatterySystem& SystemOf(BatteryMode mode) {
  return rolu_protocol::kBatterySystems[IndexOf(mode)];
}

std::uint16_t& BatteryState::Threshold(BatteryMode of, Protection protection) {
  return thresholds_[IndexOf(of)][static_cast<std::size_t>(protection)];
}

std::uint16_t BatteryState::Threshold(BatteryMode of, Protection protection) const {
  return thresholds_[IndexOf(of)][static_cast<std::size_t>(protection)];
}

std::uint16_t BatteryState::RawAt(TimePoint now) const {
  const double units = std::round(VoltsAt(now) / SystemOf(mode).volts_per_unit);
  return static_cast<std::uint16_t>(std::clamp(units, 0.0, 65535.0));
}

double BatteryState::LowVolts(Protection protection) const {
  return (Threshold(mode, protection) - 0.5) * SystemOf(mode).volts_per_unit;
}

bool BatteryState::IsProtectedAndLow(Protection protection, TimePoint now) const {
  return protection_enabled[static_cast<std::size_t>(protection)] && VoltsAt(now) < LowVolts(protection);
}

std::optional<TimePoint> BatteryState::NextLowBatteryChange(Protection protection, TimePoint now) const {
  // On an almost level curve the voltage at the computed time may still be on the same side. The caller then
  // waits this much longer, so that it does not spin.
  constexpr std::chrono::milliseconds kLeast(1);
  const std::optional<std::chrono::nanoseconds> crossing =
      curve.NextCrossing(LowVolts(protection), now - curve_start);
  if (!crossing) return std::nullopt;
  return std::max(curve_start + *crossing, now + kLeast);
}

}  // namespace rolu_sim
