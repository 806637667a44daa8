// A call of the library against a simulated board, and all that comes of it in its normal course: the
// status, every byte of the caller's memory, and the bytes on the wire.
#ifndef TESTS_ORACLE_CALL_ROW_H
#define TESTS_ORACLE_CALL_ROW_H

#include <cstring>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "kavo_rolu.h"
#include "simulator/line/reply.h"

namespace rolu_test {

// Makes the call. `output` is the memory that the call writes its results to.
using Call = std::function<ROLU_STATUS(void* output)>;

// What the MCU answers to one command in place of its model: a line, or any other reply.
struct Answer {
  Answer(const char* line) : reply(rolu_sim::Reply::Line(line)) {}
  Answer(const std::string& line) : reply(rolu_sim::Reply::Line(line)) {}
  Answer(rolu_sim::Reply any) : reply(std::move(any)) {}
  rolu_sim::Reply reply;
};

using Bytes = std::vector<unsigned char>;

// What an operation makes of one reply; false where it cannot be read. See meaning.h.
struct Course;
using Reading = std::function<bool(const std::string& reply, Course& course)>;

struct CallRow {
  // In a table of operations: the export's name without its prefix, and behind a blank what else
  // tells the row from others.
  std::string name;
  Call call;
  // One for each command of the call, in their order; the MCU's model answers what is left.
  std::vector<Answer> answers = {};
  ROLU_STATUS status = ROLU_STATUS_SUCCESS;
  // What the call has to write, from the beginning of its output; all other bytes must stay as they
  // were. See Written and Characters.
  Bytes output = {};
  // All that has to reach the MCU, carriage returns included.
  std::string wire = {};
  // The call lasts at least as long.
  int post_delay_ms = 0;

  // The rest is for the faults that are derived from a table of operations.
  //
  // What is made of the replies, in the order of the commands. Behind the last reading only an error
  // matters, as it does to an order.
  std::vector<Reading> readings = {};
  // The status for a line that is none of the operation's answers, where it can tell.
  ROLU_STATUS unreadable = ROLU_STATUS_SUCCESS;
  // The numbers of its commands, from 0 on, whose failure does not matter to it.
  std::vector<size_t> indifferent = {};
  // The call brings its family up, which has to be down before it.
  bool brings_up = false;
  // Made after each success, where the call would not say the same to the MCU once more. Not after a
  // failure: what that leaves shows in the next call.
  Call undo = {};
};

// Rows of the usual kinds: an order to the MCU, a call that writes its output, and a call that fails
// and writes nothing.
CallRow Orders(std::string name, Call call, std::vector<Answer> answers, std::string wire,
               int post_delay_ms = 50);
CallRow Gives(std::string name, Call call, std::vector<Answer> answers, Bytes output, std::string wire = {});
CallRow Fails(std::string name, Call call, std::vector<Answer> answers, ROLU_STATUS status,
              std::string wire = {});

// The row with its readings, and the status for what they cannot read.
CallRow Reads(CallRow row, std::vector<Reading> readings, ROLU_STATUS unreadable = ROLU_STATUS_SUCCESS);

// Calls of the usual forms; more go into a lambda.
inline Call Plain(ROLU_STATUS (*function)()) {
  return [function](void*) { return function(); };
}
template <typename Parameter, typename Argument>
Call With(ROLU_STATUS (*set)(Parameter), Argument argument) {
  return [set, argument](void*) { return set(static_cast<Parameter>(argument)); };
}
template <typename Value>
Call Into(ROLU_STATUS (*get)(Value*)) {
  return [get](void* output) { return get(static_cast<Value*>(output)); };
}
// The same call with a null output.
inline Call OnNull(Call call) {
  return [call = std::move(call)](void*) { return call(nullptr); };
}
// A switch as some compilers pass it: any byte, not only 0 and 1.
Call WithByte(ROLU_STATUS (*set)(bool), unsigned int byte);

// The bytes of the values, one after the other.
template <typename... Values>
Bytes Written(const Values&... values) {
  Bytes bytes;
  const auto append = [&bytes](const auto& value) {
    const size_t start = bytes.size();
    bytes.resize(start + sizeof value);
    memcpy(bytes.data() + start, &value, sizeof value);
  };
  (append(values), ...);
  return bytes;
}

// Text, padded with NUL to `size` bytes.
Bytes Characters(std::string_view text, size_t size);

// The commands of a row, carriage returns included.
std::vector<std::string> CommandsOf(const std::string& wire);

// A family of the interface with its two switches.
struct Family {
  std::function<ROLU_STATUS()> initialize;
  std::function<ROLU_STATUS()> deinitialize;
};

}  // namespace rolu_test

#endif  // TESTS_ORACLE_CALL_ROW_H
