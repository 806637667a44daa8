// What the power manager learns from the MCU when it comes up, told in the plainest way.
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

  // What is wrong with the ranges that the library tells, and with the firmware's name, which it tells while
  // it is up; empty if all is as here.
  std::string FaultOfLibrary(bool is_up) const;

  // Takes what these answers to its six commands tell. What they leave out stays as it was.
  void Learn(const Replies& replies);
};

}  // namespace rolu_test

#endif  // TESTS_ORACLE_START_UP_H
