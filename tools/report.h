#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "tools/session.h"
#include "tools/status_words.h"
#include "tools/terminal.h"

namespace rolu {

// A JSON document whose keys keep their order.
using Document = nlohmann::ordered_json;

// The values that a command read: one table of fields that prints as text or as JSON.
//
//   battery.voltage   12.600 V            {"battery.voltage": {"value": 12.6, "unit": "V"},
//   pins.inputs       - why it is not      "pins.inputs": {"error": "...", "status": "0xC00B"}}
class Report {
 public:
  void AddValue(const Setting& setting, const Value& value);
  void AddValue(std::string name, const Value& value, std::string text, std::string_view unit = {});
  // Adds a field whose value could not be read, or one that was not asked for.
  void AddProblem(std::string_view name, ROLU_STATUS status);
  void AddSkipped(std::string_view name, std::string_view reason);
  // Adds a heading over the fields that follow. The JSON does not have it.
  void AddTitle(std::string_view title);

  void Print(bool json) const;

  // Prints only the values, one per line.
  void PrintValues() const;

 private:
  struct Field {
    std::string name;
    Document json;     // null: a heading
    std::string text;  // the value without its unit, or why there is none
    const char* colour = "";
  };

  void PrintText() const;

  std::vector<Field> fields_;
};

// Prints a document on standard output.
void PrintJson(const Document& document);

// Prints a document at once and as one line, for a stream of events.
void PrintJsonLine(const Document& document);

// Reads one setting into the report, and counts the success or failure in the outcome. Throws when a signal
// asks for an end.
ROLU_STATUS ReadInto(Session& session, const Setting& setting, Report& report, Outcome& outcome);

// Why a setting could not be read, and what to do.
std::string WhyNotRead(const Setting& setting, ROLU_STATUS status);

// Reads the setting or group of this name and prints it. Throws CommandError when it cannot be read.
ExitStatus ReadAndPrint(Session& session, const std::string& name, const CommonOptions& common);

// The present time with milliseconds and the offset from UTC: "2026-11-24T21:38:15.123+01:00".
std::string TimeStamp();

}  // namespace rolu
