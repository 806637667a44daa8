#include "tests/support/call_table.h"

namespace rolu_test {

CallTable::CallTable(Family family) : family_(std::move(family)) {
  board_.AttachThisProcess();
}

void CallTable::BringUp() {
  ASSERT_EQ(StatusText(family_.initialize()), StatusText(ROLU_STATUS_SUCCESS));
}

void CallTable::Prepare(const CallRow& row) {
  ScriptAnswers(board_.mcu(), row);
}

std::string CallTable::Traffic() {
  return TrafficTo(board_.mcu());
}

void CallTable::Run(const std::vector<CallRow>& rows) {
  ASSERT_FALSE(rows.empty());
  for (const CallRow& row : rows) {
    SCOPED_TRACE("row: " + row.name);
    const Made made = Make(row);
    EXPECT_EQ(FaultOf(made, row.status, row.output, row.wire), "");
    EXPECT_GE(made.duration.count(), row.post_delay_ms);
  }
}

void CallTable::Refuse(ROLU_STATUS status, const std::vector<NamedCall>& calls) {
  for (const NamedCall& each : calls) Run({Fails(each.name, each.call, {}, status)});
}

Made CallTable::Make(const CallRow& row) {
  Prepare(row);
  Made made = MakeCall(row.call);
  made.traffic = Traffic();
  if (row.undo && made.status == ROLU_STATUS_SUCCESS) {
    board_.mcu().ClearScript();
    EXPECT_EQ(StatusText(row.undo(nullptr)), StatusText(ROLU_STATUS_SUCCESS)) << row.name << ", undone";
  }
  return made;
}

}  // namespace rolu_test
