// Every fault of the MCU, at every command of every operation. Checks the status, the caller's memory, the
// bytes that the MCU received, that the next call succeeds, and that nothing leaks. The operations come from
// their table. The faults are made from the answers of the healthy MCU.
#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <algorithm>
#include <exception>
#include <set>

#include "mcu/link.h"
#include "tests/oracle/operations.h"
#include "tests/oracle/plain_reading.h"
#include "tests/support/call_table.h"
#include "tests/support/interface_header.h"
#include "tests/support/link_state.h"
#include "tests/support/process_state.h"

#if defined(__has_feature)
#define ROLU_HAS_LEAK_CHECK __has_feature(address_sanitizer)
#elif defined(__SANITIZE_ADDRESS__)
#define ROLU_HAS_LEAK_CHECK 1
#else
#define ROLU_HAS_LEAK_CHECK 0
#endif

#if ROLU_HAS_LEAK_CHECK
#include <sanitizer/lsan_interface.h>
#endif

namespace rolu_test {
namespace {

using rolu_sim::Reply;

constexpr std::chrono::milliseconds kReplyWait{3000};

struct Fault {
  std::string name;
  std::string answer;      // what the MCU sends for the command
  std::string afterwards;  // what the MCU sends after the end of the call
};

// `healthy` is one answer; its last line is the reply.
std::vector<Fault> FaultsOf(const std::string& healthy) {
  using std::string_literals::operator""s;
  const std::string end = "\r\n";
  const std::string noise = "\x00\xff\x80\x07[\x1b\x7f"s;
  const std::string reply = WholeLines(healthy).back();
  const std::string lines_before = healthy.substr(0, healthy.size() - end.size() - reply.size());
  const std::string half = healthy.substr(0, healthy.size() - end.size() - 1);
  const std::string too_long(64, 'F');
  std::vector<Fault> faults = {
      {"silence", "", ""},
      {"late", "", healthy},
      {"the rest late", half, healthy.substr(half.size())},
      {"nothing whole", end + too_long + end + noise, ""},
      {"shortened", half + end, ""},
      {"longest line", lines_before + std::string(63, 'F') + end, ""},
      {"noise for a line", lines_before + noise + end, ""},
      {"unlisted error", lines_before + "ERR-M05" + end, ""},
      {"error within a line", lines_before + "1ERR-W02." + end, ""},
      {"empty lines before", "\r\n\n\r" + healthy, ""},
      {"too long a line before", too_long + end + healthy, ""},
      {"noise before", noise + "]\n" + std::string(1000, '\xaa') + '\r' + healthy, ""},
      {"doubled", healthy + healthy, ""},
      {"among messages", "[GI:0001FFFF8000]\r\n[0000]\r\n" + healthy + "[0001]\r\n", ""},
  };
  for (const std::string_view error : kErrorReplies) {
    faults.push_back({std::string(error), lines_before + std::string(error) + end, ""});
  }
  return faults;
}

// One cell of the matrix: a fault at one command of an operation.
struct Cell {
  Fault fault;
  OddAnswer odd;
};

// The cells of an operation. Those that wait for a time-out come first.
std::vector<Cell> CellsOf(const CallRow& row) {
  std::vector<Cell> cells;
  for (size_t command = 0; command < row.answers.size(); ++command) {
    for (const Fault& fault : FaultsOf(BytesOf(row.answers[command]))) {
      cells.push_back({fault, {&row, command, fault.answer}});
    }
  }
  std::stable_partition(cells.begin(), cells.end(),
                        [](const Cell& cell) { return cell.odd.Status() == ROLU_STATUS_VPM_NO_REPLY; });
  return cells;
}

// A board and a family that meet several cells one after another. The link stays open.
class Lane : public CallTable {
 public:
  explicit Lane(const Family& family) : CallTable(family) {}

  void Run(const std::vector<const Cell*>& cells) {
    const ProcessState before;
    ASSERT_EQ(VPMOpen("/proc/vpm_serial", O_RDWR), 0);
    for (const Cell* cell : cells) RunCell(*cell);
    family().deinitialize();
    EXPECT_EQ(VPMClose(), 0);
    EXPECT_EQ(LeftSince(before), "");
  }

 private:
  void RunCell(const Cell& cell) {
    const CallRow& row = *cell.odd.operation;
    SCOPED_TRACE("command " + std::to_string(cell.odd.command) + ", " + cell.fault.name);
    CallRow faulty = row;
    faulty.answers[cell.odd.command] =
        cell.fault.answer.empty() ? Reply::Silence() : Reply::Bytes(cell.fault.answer);
    SwitchFor(row);
    const Made made = Make(faulty);
    EXPECT_EQ(FaultOf(made, cell.odd), "");
    if (cell.odd.Status() == ROLU_STATUS_VPM_NO_REPLY) {
      EXPECT_GE(made.duration, kReplyWait);
    }
    if (!cell.fault.afterwards.empty()) {
      board().mcu().SendRaw(cell.fault.afterwards);
      EXPECT_TRUE(WaitUntil(IsReplyStored));
    }
    SwitchFor(row);
    SCOPED_TRACE("the next call");
    CallTable::Run({row});
  }

  void SwitchFor(const CallRow& row) {
    board().mcu().ClearScript();
    if (row.brings_up) {
      family().deinitialize();
    } else {
      family().initialize();
    }
  }
};

// Whether this process has leaked; stderr gets the details. Only the address sanitizer finds leaks; in other
// builds this is false. Use it in a process that ends with _exit, where the sanitizer does not check by
// itself.
bool HasLeaked() {
#if ROLU_HAS_LEAK_CHECK
  return __lsan_do_recoverable_leak_check() != 0;
#else
  return false;
#endif
}

// A lane is a process, because a process has one library, in which only one command at a time waits for its
// answer.
constexpr size_t kSomeLanes = 4;
constexpr size_t kManyLanes = 12;

bool IsSlow(const CallRow& row) {
  return row.post_delay_ms >= 500 || row.answers.size() > 2;
}

pid_t StartLane(const Family& family, const std::vector<const Cell*>& cells) {
  const pid_t parent = getpid();
  const pid_t child = fork();
  if (child != 0) return child;
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (getppid() != parent) _exit(2);
  try {
    Lane(family).Run(cells);
    EXPECT_FALSE(HasLeaked()) << "see the report of the leaks";
  } catch (const std::exception& error) {
    ADD_FAILURE() << error.what();
  }
  fflush(nullptr);
  _exit(testing::Test::HasFailure() ? 1 : 0);
}

}  // namespace

void PrintTo(const Operation& operation, std::ostream* stream) {
  *stream << operation.row->name;
}

namespace {

class FaultMatrix : public testing::TestWithParam<Operation> {};

TEST_P(FaultMatrix, EndsTheCallAsStatedAndTheNextOneIsWhole) {
  const CallRow& row = *GetParam().row;
  ASSERT_EQ(row.answers.size(), CommandsOf(row.wire).size()) << "one answer for each command";
  const std::vector<Cell> cells = CellsOf(row);
  std::vector<std::vector<const Cell*>> lanes(IsSlow(row) ? kManyLanes : kSomeLanes);
  for (size_t i = 0; i < cells.size(); ++i) lanes[i % lanes.size()].push_back(&cells[i]);

  fflush(nullptr);
  std::vector<pid_t> children;
  for (const auto& lane : lanes) children.push_back(StartLane(GetParam().family->switches, lane));
  for (const pid_t child : children) EXPECT_EQ(WaitStatusOf(child), 0) << "see above";
}

std::string TestName(const testing::TestParamInfo<Operation>& info) {
  std::string name = info.param.row->name;
  std::ranges::replace(name, ' ', '_');
  return name;
}

std::vector<Operation> Operations(bool slow) {
  std::vector<Operation> operations = AllOperations();
  std::erase_if(operations, [slow](const Operation& operation) { return IsSlow(*operation.row) != slow; });
  return operations;
}

INSTANTIATE_TEST_SUITE_P(InManyLanes, FaultMatrix, testing::ValuesIn(Operations(true)), TestName);
INSTANTIATE_TEST_SUITE_P(InSomeLanes, FaultMatrix, testing::ValuesIn(Operations(false)), TestName);

std::string ExportOf(const CallRow& row) {
  return row.name.substr(0, row.name.find(' '));
}

TEST(TableOfOperations, HoldsEveryExportOfTheFamiliesThatTalkToTheMcu) {
  std::set<std::string> in_table;
  size_t cells = 0;
  for (const Operation& operation : AllOperations()) {
    in_table.insert(ExportOf(*operation.row));
    cells += CellsOf(*operation.row).size();
  }
  RecordProperty("cells", static_cast<int>(cells));
  for (const CallRow& row : SilentOperations()) in_table.insert(ExportOf(row));

  EXPECT_EQ(in_table, DeclaredForMcuFamilies());
}

TEST(TableOfOperations, SilentOperationsSendNothing) {
  Lane lane(McuFamilies().front().switches);
  const auto bring_all_up = [] {
    for (const McuFamily& family : McuFamilies()) family.switches.initialize();
  };
  for (const CallRow& row : SilentOperations()) {
    bring_all_up();
    lane.CallTable::Run({row});
  }
  for (const McuFamily& family : McuFamilies()) family.switches.deinitialize();
}

}  // namespace
}  // namespace rolu_test
