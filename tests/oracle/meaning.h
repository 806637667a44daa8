// What each operation has to make of any answers, in the plainest code. Tests compare the library with it.
// A row of the usual kind needs no reading of its own: see Asks.
#ifndef TESTS_ORACLE_MEANING_H
#define TESTS_ORACLE_MEANING_H

#include <optional>
#include <string>
#include <type_traits>
#include <vector>

#include "tests/oracle/made_call.h"
#include "tests/oracle/plain_reading.h"

namespace rolu_test {

// An operation in its course.
struct Course {
  Ending ending = {};
  // Replaces the table's command, if the last reply tells what to send.
  std::string next_command = {};
  // The volts of a step, once the battery system is known.
  float scale = 0.0F;

  // The operation writes these values, one after the other.
  template <typename... Values>
  bool Write(const Values&... values) {
    ending.output = MemoryWith(Written(values...));
    return true;
  }
};

// NUL behind the end.
char CharacterOf(const std::string& reply, size_t position);

// '1' is on, all else is off.
Reading Flag(size_t position);
// '1' is on, '0' is off.
Reading Switch(size_t position);

// How a reply reads that is a hexadecimal number, cut to the size of the output; a char is a flag.
template <typename Value>
Reading UsualReading() {
  static_assert(std::is_integral_v<Value>, "this row needs a reading of its own");
  if (std::is_same_v<Value, char>) return Flag(0);
  return [](const std::string& reply, Course& course) {
    return course.Write(static_cast<Value>(NumberOf(reply, 16)));
  };
}

// The row of a question whose answer reads in the usual way.
template <typename Value>
CallRow Asks(std::string name, ROLU_STATUS (*get)(Value*), const char* answer,
             std::type_identity_t<Value> value, std::string wire) {
  return Reads(Gives(std::move(name), Into(get), {answer}, Written(value), std::move(wire)),
               {UsualReading<Value>()});
}

// The lines that answer an operation's commands, one for each; of a command that is answered with two
// lines the second one. Nothing where no such line comes.
using Replies = std::vector<std::optional<std::string>>;

// The replies in the table.
Replies HealthyReplies(const CallRow& row);

// The power manager's voltages are those of the scales that the table's start-up tells.
Ending MeaningOf(const CallRow& row, const Replies& replies);

}  // namespace rolu_test

#endif  // TESTS_ORACLE_MEANING_H
