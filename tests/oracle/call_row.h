// A call of the library against a simulated board, and its complete normal result: the status, every byte of
// the caller's memory, and the bytes on the wire.
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

// The MCU's reply to one command instead of its model's: a line, or any other reply.
struct Answer {
  Answer(const char* line) : reply(rolu_sim::Reply::Line(line)) {}
  Answer(const std::string& line) : reply(rolu_sim::Reply::Line(line)) {}
  Answer(rolu_sim::Reply any) : reply(std::move(any)) {}
  rolu_sim::Reply reply;
};

using Bytes = std::vector<unsigned char>;

// Gives what an operation must do with one reply; false when it cannot read the reply. See meaning.h.
struct Course;
using Reading = std::function<bool(const std::string& reply, Course& course)>;

struct CallRow {
  // In a table of operations: the function's name without its prefix. After a blank, words that tell the row
  // from others.
  std::string name;
  Call call;
  // One answer for each command of the call, in their order. The MCU's model answers the remaining commands.
  std::vector<Answer> answers = {};
  ROLU_STATUS status = ROLU_STATUS_SUCCESS;
  // What the call must write at the beginning of its output. All other bytes must stay unchanged. See Written
  // and Characters.
  Bytes output = {};
  // Everything that the MCU must receive, carriage returns included.
  std::string wire = {};
  // The call must last at least this long.
  int post_delay_ms = 0;

  // The rest is for the faults that are derived from a table of operations.
  //
  // One reading for each reply, in the order of the commands. Of a reply without a reading only an error
  // matters, as for an order.
  std::vector<Reading> readings = {};
  // The status for a line that the operation cannot read, if the operation checks that.
  ROLU_STATUS unreadable = ROLU_STATUS_SUCCESS;
  // The numbers of the commands, from 0 on, whose failure the operation ignores.
  std::vector<size_t> indifferent = {};
  // The call brings its family up. The family must be down before.
  bool brings_up = false;
  // Called after each success, if the call would otherwise not send the same to the MCU again. Not called
  // after a failure: the next call must show what the failure left behind.
  Call undo = {};
};

// Rows of the usual kinds: an order to the MCU, a call that writes its output, and a call that fails
// and writes nothing.
CallRow Orders(std::string name, Call call, std::vector<Answer> answers, std::string wire,
               int post_delay_ms = 50);
CallRow Gives(std::string name, Call call, std::vector<Answer> answers, Bytes output, std::string wire = {});
CallRow Fails(std::string name, Call call, std::vector<Answer> answers, ROLU_STATUS status,
              std::string wire = {});

// The row with its readings, and with the status for replies that they cannot read.
CallRow Reads(CallRow row, std::vector<Reading> readings, ROLU_STATUS unreadable = ROLU_STATUS_SUCCESS);

// Calls of the usual forms. Other calls are lambdas.
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
// A switch whose byte is not only 0 or 1, as some compilers may pass it.
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

// A family of the interface, with the functions that bring it up and down.
struct Family {
  std::function<ROLU_STATUS()> initialize;
  std::function<ROLU_STATUS()> deinitialize;
};

}  // namespace rolu_test

#endif  // TESTS_ORACLE_CALL_ROW_H
