// What the power manager learns from the MCU when it comes up, told in the plainest way.
#ifndef FUZZ_START_UP_MODEL_H
#define FUZZ_START_UP_MODEL_H

#include "tests/oracle/meaning.h"

namespace rolu_fuzz {

struct StartUp {
  std::string printed = {};
  std::string firmware = {};
  float scale_12v = 0;
  float scale_24v = 0;
  BATTERY_INFO range_12v = {};
  BATTERY_INFO range_24v = {};

  // Takes what these answers to its six commands tell. What they leave out stays as it was.
  void Learn(const rolu_test::Replies& replies);
};

}  // namespace rolu_fuzz

#endif  // FUZZ_START_UP_MODEL_H
