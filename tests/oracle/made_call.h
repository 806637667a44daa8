// The result of a call, and the result that it must have when the MCU answers one of its commands with
// anything.
#ifndef TESTS_ORACLE_MADE_CALL_H
#define TESTS_ORACLE_MADE_CALL_H

#include <array>
#include <chrono>
#include <cstddef>
#include <string>

#include "simulator/line/mcu_serial.h"
#include "tests/oracle/call_row.h"

namespace rolu_test {

// The memory for a call. It has room for any result, and is filled so that each written byte shows, even a
// byte too many.
using OutputMemory = std::array<unsigned char, 272>;

// The memory with these bytes at its beginning; the other bytes are as before the call.
OutputMemory MemoryWith(const Bytes& bytes);

// The memory in hexadecimal, up to the last byte that was written, but at least `length` bytes.
std::string BytesText(const OutputMemory& memory, size_t length);

std::string StatusText(ROLU_STATUS status);

struct Made {
  ROLU_STATUS status = ROLU_STATUS_SUCCESS;
  alignas(std::max_align_t) OutputMemory output = {};
  std::string traffic = {};
  std::chrono::milliseconds duration{0};
};

// Makes the call. The caller must add the traffic.
Made MakeCall(const Call& call);

// Makes the MCU give the row's answers to the next commands. TrafficTo returns these commands.
void ScriptAnswers(rolu_sim::McuSerial& mcu, const CallRow& row);
std::string TrafficTo(rolu_sim::McuSerial& mcu);

// The result that a call must have.
struct Ending {
  ROLU_STATUS status = ROLU_STATUS_SUCCESS;
  OutputMemory output = MemoryWith({});
  std::string wire = {};
};

// All bytes of an answer.
std::string BytesOf(const Answer& answer);

// An operation and an odd answer: the MCU answers one of the commands with `sent`, and the others as in the
// table.
struct OddAnswer {
  const CallRow* operation;
  size_t command;
  std::string sent;

  // The status of that command by the rules of the wire.
  ROLU_STATUS Status() const;
};

// What is wrong with a call; empty if its result is right.
std::string FaultOf(const Made& made, const Ending& ending);

// The same for a call that met an odd answer.
std::string FaultOf(const Made& made, const OddAnswer& answer);

// The same for a call that must end with `status`, this output and these bytes on the wire.
std::string FaultOf(const Made& made, ROLU_STATUS status, const Bytes& output, const std::string& wire);

}  // namespace rolu_test

#endif  // TESTS_ORACLE_MADE_CALL_H
