#include "tools/confirm.h"

#include <fmt/format.h>

#include <cstdio>
#include <iostream>

#include "tools/interrupt.h"
#include "tools/messages.h"

namespace rolu {

void Confirm(const CommonOptions& options, const std::vector<std::string>& consequences) {
  if (options.yes || consequences.empty()) return;
  for (const std::string& consequence : consequences) Say("this " + consequence);
  fmt::print(stderr, "rolu: go on? [y/N] ");
  std::string answer;
  const bool answered = static_cast<bool>(std::getline(std::cin, answer));
  if (!answered) fmt::print(stderr, "\n");
  interrupt::ThrowIfRequested();
  if (answer == "y" || answer == "Y" || answer == "yes") return;
  throw CommandError(kPartlyDone, answered
                                      ? "nothing was done, as the answer was not yes"
                                      : "nothing was done, as nobody answered; -y goes on without asking");
}

}  // namespace rolu
