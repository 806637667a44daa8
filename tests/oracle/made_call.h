// What came of a call, and how it has to end when the MCU answers one of its commands with anything.
#ifndef TESTS_ORACLE_MADE_CALL_H
#define TESTS_ORACLE_MADE_CALL_H

#include <array>
#include <chrono>
#include <cstddef>
#include <string>

#include "simulator/line/mcu_serial.h"
#include "tests/oracle/call_row.h"

namespace rolu_test {

// The memory that a call is given: room for any result, filled so that a byte that was written
// shows, and so does one too many.
using OutputMemory = std::array<unsigned char, 272>;

// Memory that holds these bytes, and otherwise what it held before the call.
OutputMemory MemoryWith(const Bytes& bytes);

// The memory in hexadecimal up to the last byte that was written, at least `length` bytes.
std::string BytesText(const OutputMemory& memory, size_t length);

std::string StatusText(ROLU_STATUS status);

struct Made {
  ROLU_STATUS status = ROLU_STATUS_SUCCESS;
  alignas(std::max_align_t) OutputMemory output = {};
  std::string traffic = {};
  std::chrono::milliseconds duration{0};
};

// Makes the call. What it sends is for the caller to add.
Made MakeCall(const Call& call);

// The MCU gives the row's answers to the commands that come now, which are what TrafficTo tells.
void ScriptAnswers(rolu_sim::McuSerial& mcu, const CallRow& row);
std::string TrafficTo(rolu_sim::McuSerial& mcu);

// How a call has to end.
struct Ending {
  ROLU_STATUS status = ROLU_STATUS_SUCCESS;
  OutputMemory output = MemoryWith({});
  std::string wire = {};
};

// All bytes of an answer.
std::string BytesOf(const Answer& answer);

// An operation. The MCU answers one of its commands with `sent`, and the others as in the table.
struct OddAnswer {
  const CallRow* operation;
  size_t command;
  std::string sent;

  // The status of the command, by the rules of the wire.
  ROLU_STATUS Status() const;
};

// What is wrong with a call; empty if it ended as it has to.
std::string FaultOf(const Made& made, const Ending& ending);

// The same of a call that met an odd answer.
std::string FaultOf(const Made& made, const OddAnswer& answer);

// The same of a call that has to end with `status`, this output and these bytes on the wire.
std::string FaultOf(const Made& made, ROLU_STATUS status, const Bytes& output, const std::string& wire);

}  // namespace rolu_test

#endif  // TESTS_ORACLE_MADE_CALL_H
