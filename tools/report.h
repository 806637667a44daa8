#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "cli/exit_status.h"
#include "tools/setting.h"

namespace rolu {

// JSON whose keys keep their order.
using Document = nlohmann::ordered_json;

// What a command read: one table of fields that prints as text or as JSON.
//
//   battery.voltage   12.600 V            {"battery.voltage": {"value": 12.6, "unit": "V"},
//   pins.inputs       - why it is not      "pins.inputs": {"error": "...", "status": "0xC00B"}}
class Report {
 public:
  void AddValue(const Setting& setting, const Value& value);
  void AddValue(std::string name, const Value& value, std::string text, std::string_view unit = {});
  // What could not be read, and what was not asked for a reason.
  void AddProblem(std::string_view name, ROLU_STATUS status);
  void AddSkipped(std::string_view name, std::string_view reason);
  // A line over the fields that follow; not part of the JSON.
  void AddTitle(std::string_view title);

  void Print(bool json) const;

  // Only the values, one a line.
  void PrintValues() const;

 private:
  struct Field {
    std::string name;
    Document json;     // null: a title
    std::string text;  // the value without its unit, or why there is none
    const char* colour = "";
  };

  void PrintText() const;

  std::vector<Field> fields_;
};

// Prints a document on standard output.
void PrintJson(const Document& document);

// Prints a document as one line at once, as a stream of events has them.
void PrintJsonLine(const Document& document);

// How well the parts of a command went.
class Outcome {
 public:
  void Add(ExitStatus status) {
    if (status == kDone) ++done_;
    if (first_failure_ == kDone) first_failure_ = status;
  }
  // kDone, kPartlyDone when some went well, else what the first failure was.
  ExitStatus Result() const { return first_failure_ == kDone || done_ == 0 ? first_failure_ : kPartlyDone; }

 private:
  int done_ = 0;
  ExitStatus first_failure_ = kDone;
};

}  // namespace rolu
