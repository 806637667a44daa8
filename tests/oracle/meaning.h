// What each operation has to make of any answers, in the plainest code. Tests compare the library with it.
#ifndef TESTS_ORACLE_MEANING_H
#define TESTS_ORACLE_MEANING_H

#include <optional>
#include <string>
#include <vector>

#include "tests/oracle/made_call.h"

namespace rolu_test {

// The lines that answer an operation's commands, one for each; of a command that is answered with two
// lines the second one. Nothing where no such line comes.
using Replies = std::vector<std::optional<std::string>>;

// The replies in the table.
Replies HealthyReplies(const CallRow& row);

// The power manager's voltages are those of the scales that the table's start-up tells.
Ending MeaningOf(const CallRow& row, const Replies& replies);

}  // namespace rolu_test

#endif  // TESTS_ORACLE_MEANING_H
