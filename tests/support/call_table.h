// Tables of calls: a row makes one call of the library against a simulated board and states all that
// may come of it, the status, every byte of the caller's memory, and the bytes on the wire.
#ifndef TESTS_SUPPORT_CALL_TABLE_H
#define TESTS_SUPPORT_CALL_TABLE_H

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "kavo_rolu.h"
#include "simulator/board.h"

namespace rolu_test {

// Makes the call. `output` is the memory that the call writes its results to, null when the row
// tests a missing one.
using Call = std::function<ROLU_STATUS(void* output)>;

// What the MCU answers to one command in place of its model: a line, or any other reply.
struct Answer {
  Answer(const char* line) : reply(rolu_sim::Reply::Line(line)) {}
  Answer(const std::string& line) : reply(rolu_sim::Reply::Line(line)) {}
  Answer(rolu_sim::Reply any) : reply(std::move(any)) {}
  rolu_sim::Reply reply;
};

using Bytes = std::vector<unsigned char>;

struct CallRow {
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
  bool output_is_null = false;
};

// Rows of the usual kinds: an order to the MCU, a call that writes its output, and a call that fails
// and writes nothing.
CallRow Orders(std::string name, Call call, std::vector<Answer> answers, std::string wire,
               int post_delay_ms = 50);
CallRow Gives(std::string name, Call call, std::vector<Answer> answers, Bytes output, std::string wire = {});
CallRow Fails(std::string name, Call call, std::vector<Answer> answers, ROLU_STATUS status,
              std::string wire = {});

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

// The rows that follow from a table of operations in their normal course.
//
// Each call is refused before anything is sent.
std::vector<CallRow> Refused(const std::vector<CallRow>& operations, ROLU_STATUS status);
// The same for a null output, of the operations that have one.
std::vector<CallRow> RefusedForNullOutput(const std::vector<CallRow>& operations, ROLU_STATUS status);
// The MCU answers one command of the call with an error, the ones before it as in the table: the
// call ends there with the error's status and writes nothing.
std::vector<CallRow> WithErrorReplies(const std::vector<CallRow>& operations);

// A family of the interface with its two switches.
struct Family {
  std::function<ROLU_STATUS()> initialize;
  std::function<ROLU_STATUS()> deinitialize;
};

// A board of its own for each test, and one family, which is down at the start; the end of the test
// takes it down again.
class CallTableTest : public testing::Test {
 protected:
  explicit CallTableTest(Family family);
  void TearDown() override;

  rolu_sim::Board& board() { return board_; }

  void BringUp();
  void Run(const std::vector<CallRow>& rows);

  // Brings the family down and up in every order that matters; `start_up_wire` is what it sends
  // when it comes up.
  void RunLifecycle(const std::string& start_up_wire);

  // What a row meets. A family that uses device files instead of the MCU gives its log of them.
  virtual void Prepare(const CallRow& row);
  virtual std::string Traffic();

 private:
  void RunRow(const CallRow& row);

  Family family_;
  rolu_sim::Board board_;
};

}  // namespace rolu_test

#endif  // TESTS_SUPPORT_CALL_TABLE_H
