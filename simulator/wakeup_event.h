#pragma once

#include "simulator/unique_fd.h"

namespace rolu_sim {

// Wakes a thread that polls its descriptor. Signals add up until they are taken.
class WakeupEvent {
 public:
  WakeupEvent();

  int fd() const { return event_.get(); }
  void Signal() const;
  void Take() const;

 private:
  UniqueFd event_;
};

}  // namespace rolu_sim
