#include "simulator/mcu/voltage_curve.h"

#include <charconv>
#include <cmath>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>

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
  if (!time) Refuse(word, std::string("a time has a unit, as ") + rolu::kDurationExamples);
  VoltageCurve::Point point;
  point.at = *time;
  point.volts = ParseNumber(word, text.substr(equals + 1));
  if (point.volts < 0 || point.volts > VoltageCurve::kMaxVolts) Refuse(word, "a voltage is from 0 to 100");
  return point;
}

}  // namespace

VoltageCurve::VoltageCurve(double volts) : points_{Point{std::chrono::milliseconds(0), volts}} {}

VoltageCurve::VoltageCurve(std::vector<Point> points) : points_(std::move(points)) {}

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
  if (elapsed <= points_.front().at) return points_.front().volts;
  for (std::size_t next = 1; next < points_.size(); ++next) {
    const Point& from = points_[next - 1];
    const Point& to = points_[next];
    if (elapsed >= to.at) continue;
    const double share =
        std::chrono::duration<double>(elapsed - from.at) / std::chrono::duration<double>(to.at - from.at);
    return from.volts + (to.volts - from.volts) * share;
  }
  return points_.back().volts;
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

}  // namespace rolu_sim
