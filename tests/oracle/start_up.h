// The values that the power manager reads from the MCU when it comes up, in the plainest code.
#ifndef TESTS_ORACLE_START_UP_H
#define TESTS_ORACLE_START_UP_H

#include "tests/oracle/meaning.h"

namespace rolu_test {

struct StartUp {
  std::string printed = {};
  std::string firmware = {};
  float scale_12v = 0;
  float scale_24v = 0;
  BATTERY_INFO range_12v = {};
  BATTERY_INFO range_24v = {};

  // What is wrong with the library's ranges, or with its firmware name, which it gives only while it is up.
  // Empty if all equal the values here.
  std::string FaultOfLibrary(bool is_up) const;

  // Takes the values from these answers to the six commands. A value that is missing stays as it was.
  void Learn(const Replies& replies);
};

}  // namespace rolu_test

#endif  // TESTS_ORACLE_START_UP_H
