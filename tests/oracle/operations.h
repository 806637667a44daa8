// The operations that talk to the MCU, each once in its normal course (and again where its arguments
// choose another command), by family. The families' own tests run them, and the faults of the MCU are
// tried on each of them: a new operation is added here.
#ifndef TESTS_ORACLE_OPERATIONS_H
#define TESTS_ORACLE_OPERATIONS_H

#include <string>
#include <vector>

#include "tests/oracle/call_row.h"

namespace rolu_test {

const std::vector<CallRow>& IdentityOperations();
const std::vector<CallRow>& PowerOffDelayOperations();
const std::vector<CallRow>& CarBatteryOperations();
const std::vector<CallRow>& IgnitionAndModeOperations();
const std::vector<CallRow>& PowerSourceOperations();
const std::vector<CallRow>& ClockOperations();
const std::vector<CallRow>& BackupBatteryOperations();
const std::vector<CallRow>& WatchdogOperations();
const std::vector<CallRow>& GSensorOperations();
const std::vector<CallRow>& PeripheralOperations();

// The calls of the families that send nothing to the MCU.
const std::vector<CallRow>& SilentOperations();

// A family with all that it says to the MCU, its coming up (and going down, where it says something)
// included.
struct McuFamily {
  std::string prefix;  // of its exports, "VPM_"
  Family switches;
  std::vector<CallRow> operations;
  // The answer to a null output.
  ROLU_STATUS null_while_up;
  ROLU_STATUS null_while_down = ROLU_STATUS_NOT_INITIALIZED;
};
const std::vector<McuFamily>& McuFamilies();

// All of them, each with its family.
struct Operation {
  const McuFamily* family;
  const CallRow* row;
};
std::vector<Operation> AllOperations();

// The scales that the MCU's model tells, in volts for a step.
inline constexpr float k12V = 0.015385F;
inline constexpr float k24V = 0.01582F;

}  // namespace rolu_test

#endif  // TESTS_ORACLE_OPERATIONS_H
