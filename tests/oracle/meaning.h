// The right result of each operation for any answers, in the plainest code. Tests compare the library with
// it. A row of the usual kind needs no reading of its own: see Asks.
#ifndef TESTS_ORACLE_MEANING_H
#define TESTS_ORACLE_MEANING_H

#include <optional>
#include <string>
#include <type_traits>
#include <vector>

#include "tests/oracle/made_call.h"
#include "tests/oracle/plain_reading.h"

namespace rolu_test {

// The state of an operation while its replies come.
struct Course {
  Ending ending = {};
  // Replaces the next command of the table, if the last reply decides what to send.
  std::string next_command = {};
  // Volts per step, once the battery system is known.
  float scale = 0.0F;

  // The operation writes these values, one after the other.
  template <typename... Values>
  bool Write(const Values&... values) {
    ending.output = MemoryWith(Written(values...));
    return true;
  }
};

// NUL after the end.
char CharacterOf(const std::string& reply, size_t position);

// '1' is on, all else is off.
Reading Flag(size_t position);
// '1' is on, '0' is off.
Reading Switch(size_t position);

// Reads a hexadecimal number, cut to the size of the output; a char is a flag.
template <typename Value>
Reading UsualReading() {
  static_assert(std::is_integral_v<Value>, "this row needs a reading of its own");
  if (std::is_same_v<Value, char>) return Flag(0);
  return [](const std::string& reply, Course& course) {
    return course.Write(static_cast<Value>(NumberOf(reply, 16)));
  };
}

// The row of a question whose answer is read in the usual way.
template <typename Value>
CallRow Asks(std::string name, ROLU_STATUS (*get)(Value*), const char* answer,
             std::type_identity_t<Value> value, std::string wire) {
  return Reads(Gives(std::move(name), Into(get), {answer}, Written(value), std::move(wire)),
               {UsualReading<Value>()});
}

// The line that answers each command of an operation; for an answer of two lines, the second one. Nothing
// when that line does not come.
using Replies = std::vector<std::optional<std::string>>;

// The replies of the table.
Replies HealthyReplies(const CallRow& row);

// The result that the operation must have. The power manager's scales are those of the start-up in the table.
Ending MeaningOf(const CallRow& row, const Replies& replies);

}  // namespace rolu_test

#endif  // TESTS_ORACLE_MEANING_H
