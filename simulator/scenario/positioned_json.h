#pragma once

#include <cstddef>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>

#include "simulator/json.h"

namespace rolu_sim {

// Both count from 1.
struct TextPosition {
  std::size_t line = 1;
  std::size_t column = 1;
};

class PositionedError : public std::runtime_error {
 public:
  PositionedError(TextPosition position, const std::string& problem)
      : std::runtime_error(problem), position_(position) {}
  TextPosition position() const { return position_; }

 private:
  TextPosition position_;
};

// A JSON text that knows where each of its values stands.
class PositionedJson {
 public:
  // Throws PositionedError for a text that is no JSON, or that gives a member twice.
  explicit PositionedJson(std::string_view text);

  const Json& value() const { return value_; }

  // Where a value begins, by its JSON pointer: "/events/0/at".
  TextPosition PositionOf(const std::string& pointer) const;

 private:
  Json value_;
  std::map<std::string, TextPosition> positions_;
};

}  // namespace rolu_sim
