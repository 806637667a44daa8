// All operations that talk to the MCU, by family. Each is there once in its normal course, and again if its
// arguments choose another command. The families' own tests run them, and the tests of the MCU's faults use
// each of them. Add a new operation here.
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

// A family with all its operations that talk to the MCU. Coming up is one of them, and so is going down if it
// sends something.
struct McuFamily {
  std::string prefix;  // of its functions, "VPM_"
  Family switches;
  std::vector<CallRow> operations;
  // The status for a null output.
  ROLU_STATUS null_while_up;
  ROLU_STATUS null_while_down = ROLU_STATUS_NOT_INITIALIZED;
};
const std::vector<McuFamily>& McuFamilies();

// All operations, each with its family.
struct Operation {
  const McuFamily* family;
  const CallRow* row;
};
std::vector<Operation> AllOperations();

// The scales that the MCU's model reports, in volts per step.
inline constexpr float k12V = 0.015385F;
inline constexpr float k24V = 0.01582F;

}  // namespace rolu_test

#endif  // TESTS_ORACLE_OPERATIONS_H
