#pragma once

#include "tools/command.h"

namespace rolu {

// A command that gives the board one order that cannot be undone.
struct Order {
  const char* name;
  const char* help;
  const char* consequence;  // completes "this ..."
  Family family;
  ROLU_STATUS (*give)();
  const char* done;
};

void AddOrderCommand(CLI::App& app, Invocation& invocation, const Order& order);

}  // namespace rolu
