#include "simulator/scenario/positioned_json.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <set>
#include <utility>
#include <vector>

namespace rolu_sim {
namespace {

TextPosition PositionAt(std::string_view text, std::size_t offset) {
  const std::string_view before = text.substr(0, offset);
  const auto newlines = std::count(before.begin(), before.end(), '\n');
  const std::size_t line_start = before.rfind('\n') + 1;  // npos + 1 is 0
  return {static_cast<std::size_t>(newlines) + 1, offset - line_start + 1};
}

// Walks over a text and keeps count of what the parser has read.
struct CountingIterator {
  using iterator_category = std::input_iterator_tag;
  using value_type = char;
  using difference_type = std::ptrdiff_t;
  using pointer = const char*;
  using reference = const char&;

  const char* at;
  std::size_t* count;

  reference operator*() const { return *at; }
  CountingIterator& operator++() {
    ++at;
    ++*count;
    return *this;
  }
  CountingIterator operator++(int) {
    const CountingIterator before = *this;
    ++*this;
    return before;
  }
  friend bool operator==(const CountingIterator& one, const CountingIterator& other) {
    return one.at == other.at;
  }
  friend bool operator!=(const CountingIterator& one, const CountingIterator& other) {
    return !(one == other);
  }
};

// Hears the parser's events and notes where each value begins.
class PositionFinder : public nlohmann::json_sax<Json> {
 public:
  PositionFinder(std::string_view text, const std::size_t& read,
                 std::map<std::string, TextPosition>& positions)
      : text_(text), read_(read), positions_(positions) {}

  bool null() override { return NoteValue(read_ - 4); }
  bool boolean(bool value) override { return NoteValue(read_ - (value ? 4 : 5)); }
  bool number_integer(std::int64_t /*value*/) override { return NoteNumber(); }
  bool number_unsigned(std::uint64_t /*value*/) override { return NoteNumber(); }
  bool number_float(double /*value*/, const std::string& /*text*/) override { return NoteNumber(); }
  bool string(std::string& /*value*/) override { return NoteValue(StartOfString()); }
  bool binary(Json::binary_t& /*value*/) override { return true; }

  bool start_object(std::size_t /*elements*/) override { return Enter(false); }
  bool start_array(std::size_t /*elements*/) override { return Enter(true); }
  bool end_object() override { return Leave(); }
  bool end_array() override { return Leave(); }

  bool key(std::string& name) override {
    Level& level = levels_.back();
    if (!level.keys.insert(name).second) {
      throw PositionedError(PositionAt(text_, StartOfString()), fmt::format("\"{}\" is given twice", name));
    }
    level.pointer_of_next = Json::json_pointer(level.pointer) / name;
    return true;
  }

  bool parse_error(std::size_t /*at*/, const std::string& /*last*/,
                   const nlohmann::detail::exception& /*why*/) override {
    return false;
  }

 private:
  struct Level {
    std::string pointer;
    bool is_array = false;
    std::size_t index = 0;
    Json::json_pointer pointer_of_next;
    std::set<std::string> keys;
  };

  std::string TakePointer() {
    if (levels_.empty()) return "";
    Level& level = levels_.back();
    if (!level.is_array) return level.pointer_of_next.to_string();
    return (Json::json_pointer(level.pointer) / level.index++).to_string();
  }

  bool NoteValue(std::size_t offset) {
    positions_[TakePointer()] = PositionAt(text_, offset);
    return true;
  }

  // The parser has read one character more than the number, unless the text ends with it.
  bool NoteNumber() {
    constexpr std::string_view kNumberCharacters = "+-.0123456789eE";
    std::size_t last = std::min(read_, text_.size()) - 1;
    if (kNumberCharacters.find(text_[last]) == std::string_view::npos) --last;
    const std::size_t before = text_.find_last_not_of(kNumberCharacters, last);
    return NoteValue(before == std::string_view::npos ? 0 : before + 1);
  }

  // The parser has just read the closing quote.
  std::size_t StartOfString() const {
    const auto is_escaped = [&](std::size_t quote) {
      const std::size_t before = text_.find_last_not_of('\\', quote - 1);
      return (quote - 1 - before) % 2 != 0;
    };
    std::size_t start = text_.rfind('"', read_ - 2);
    while (start > 0 && is_escaped(start)) start = text_.rfind('"', start - 1);
    return start;
  }

  bool Enter(bool is_array) {
    std::string pointer = TakePointer();
    positions_[pointer] = PositionAt(text_, read_ - 1);
    Level level;
    level.pointer = std::move(pointer);
    level.is_array = is_array;
    levels_.push_back(std::move(level));
    return true;
  }

  bool Leave() {
    levels_.pop_back();
    return true;
  }

  std::string_view text_;
  const std::size_t& read_;
  std::map<std::string, TextPosition>& positions_;
  std::vector<Level> levels_;
};

// The parser's message without its code and its own count of lines.
std::string Complaint(const std::string& message) {
  const std::size_t colon = message.find(": ");
  return "no JSON: " + (colon == std::string::npos ? message : message.substr(colon + 2));
}

}  // namespace

PositionedJson::PositionedJson(std::string_view text) {
  try {
    value_ = Json::parse(text);
  } catch (const Json::parse_error& problem) {
    const std::size_t offset = std::min(problem.byte == 0 ? 0 : problem.byte - 1, text.size());
    throw PositionedError(PositionAt(text, offset), Complaint(problem.what()));
  }
  std::size_t read = 0;
  PositionFinder finder(text, read, positions_);
  Json::sax_parse(CountingIterator{text.data(), &read}, CountingIterator{text.data() + text.size(), &read},
                  &finder);
}

TextPosition PositionedJson::PositionOf(const std::string& pointer) const {
  const auto found = positions_.find(pointer);
  return found == positions_.end() ? TextPosition{} : found->second;
}

}  // namespace rolu_sim
