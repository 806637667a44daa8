// Every fault of the MCU at every command of every operation: the status, what the caller's memory
// holds, what the MCU was sent, that the next call is whole, and that nothing leaks. The operations
// come from their table, the faults are made from what the healthy MCU answers.
#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <exception>
#include <fstream>
#include <regex>
#include <set>
#include <sstream>

#include "mcu/link.h"
#include "mcu/link_state.h"
#include "tests/operations/operations.h"
#include "tests/support/call_table.h"
#include "tests/support/process_state.h"
#include "tests/support/wire_model.h"

namespace rolu_test {
namespace {

using rolu_sim::Reply;

constexpr std::chrono::milliseconds kReplyWait{3000};

struct Fault {
  std::string name;
  std::string answer;      // what the MCU sends for the command
  std::string afterwards;  // what it sends once the call has ended
};

// `healthy` is one answer, whose last line is the reply.
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

std::string BytesOf(const Reply& reply) {
  std::string bytes;
  for (const rolu_sim::ReplyChunk& chunk : reply.chunks()) bytes += chunk.bytes;
  return bytes;
}

// One cell of the matrix: a fault at one command of an operation.
struct Cell {
  const CallRow* row;
  size_t command;
  Fault fault;

  bool IsIndifferent() const {
    return std::count(row->indifferent.begin(), row->indifferent.end(), command) != 0;
  }
};

// How the command ends, by the rules of the wire.
struct Expected {
  ROLU_STATUS status;
  // The line is neither the healthy answer nor an error: the operation may find it unreadable or make
  // something of it.
  bool is_open = false;
};

Expected ExpectedOf(const Cell& cell) {
  const std::vector<std::string> healthy = ReplyLines(BytesOf(cell.row->answers[cell.command].reply));
  const std::vector<std::string> lines = ReplyLines(cell.fault.answer);
  if (lines.size() < healthy.size()) return {ROLU_STATUS_VPM_NO_REPLY};
  const std::string& reply = lines[healthy.size() - 1];
  return {StatusOfReply(reply), StatusOfReply(reply) == ROLU_STATUS_SUCCESS && reply != healthy.back()};
}

// The cells of an operation, those that wait for a time-out first.
std::vector<Cell> CellsOf(const CallRow& row) {
  std::vector<Cell> cells;
  for (size_t command = 0; command < row.answers.size(); ++command) {
    for (Fault& fault : FaultsOf(BytesOf(row.answers[command].reply))) {
      cells.push_back({&row, command, std::move(fault)});
    }
  }
  std::stable_partition(cells.begin(), cells.end(),
                        [](const Cell& cell) { return ExpectedOf(cell).status == ROLU_STATUS_VPM_NO_REPLY; });
  return cells;
}

bool IsReplyStored() {
  const ScopedLock lock(*io_op_lock);
  return last_command_valid;
}

// A board and a family that meet some cells one after another. The link is open all the time.
class Lane : public CallTable {
 public:
  explicit Lane(const Family& family) : CallTable(family) {}

  void Run(const std::vector<const Cell*>& cells) {
    const ProcessState before;
    ASSERT_EQ(VPMOpen("/proc/vpm_serial", O_RDWR), 0);
    for (const Cell* cell : cells) RunCell(*cell);
    family().deinitialize();
    EXPECT_EQ(VPMClose(), 0);
    EXPECT_TRUE(WaitUntil([&] { return ProcessState() == before; })) << "something is still open, or runs";
  }

 private:
  void RunCell(const Cell& cell) {
    SCOPED_TRACE("command " + std::to_string(cell.command) + ", " + cell.fault.name);
    CallRow faulty = *cell.row;
    faulty.answers[cell.command] = Reply::Bytes(cell.fault.answer);
    if (cell.fault.answer.empty()) faulty.answers[cell.command] = Reply::Silence();
    SwitchFor(*cell.row);
    Check(cell, CallTable::Make(faulty));
    if (!cell.fault.afterwards.empty()) {
      board().mcu().SendRaw(cell.fault.afterwards);
      EXPECT_TRUE(WaitUntil(IsReplyStored));
    }
    SwitchFor(*cell.row);
    SCOPED_TRACE("the next call");
    CallTable::Run({*cell.row});
  }

  void SwitchFor(const CallRow& row) {
    board().mcu().ClearScript();
    if (row.brings_up) {
      family().deinitialize();
    } else {
      family().initialize();
    }
  }

  static void Check(const Cell& cell, const Made& made) {
    const CallRow& row = *cell.row;
    Expected expected = ExpectedOf(cell);
    if (expected.status == ROLU_STATUS_VPM_NO_REPLY) {
      EXPECT_GE(made.duration, kReplyWait);
    }
    if (cell.IsIndifferent()) expected = {ROLU_STATUS_SUCCESS};
    if (expected.is_open) {
      CheckOpenEnd(cell, made);
      return;
    }
    EXPECT_EQ(StatusText(made.status), StatusText(expected.status));
    const bool succeeds = expected.status == ROLU_STATUS_SUCCESS;
    EXPECT_EQ(made.traffic, succeeds ? row.wire : WireUpTo(cell));
    const Bytes& output = succeeds ? row.output : OutputOfFailure(cell);
    EXPECT_EQ(BytesText(made.output, output.size()), BytesText(MemoryWith(output), output.size()));
  }

  static void CheckOpenEnd(const Cell& cell, const Made& made) {
    const CallRow& row = *cell.row;
    const std::string sent = WireUpTo(cell);
    EXPECT_EQ(made.traffic.substr(0, sent.size()), sent);
    if (made.status != ROLU_STATUS_SUCCESS) {
      EXPECT_EQ(StatusText(made.status), StatusText(row.unreadable));
      const Bytes& output = OutputOfFailure(cell);
      EXPECT_EQ(BytesText(made.output, output.size()), BytesText(MemoryWith(output), output.size()));
      return;
    }
    const bool is_order = row.output.empty() && cell.command + 1 == row.answers.size();
    if (is_order) {
      EXPECT_EQ(made.traffic, row.wire);
    }
    const OutputMemory untouched = MemoryWith({});
    EXPECT_TRUE(std::equal(made.output.begin() + static_cast<std::ptrdiff_t>(row.output.size()),
                           made.output.end(),
                           untouched.begin() + static_cast<std::ptrdiff_t>(row.output.size())))
        << "written beyond the result: " << BytesText(made.output, row.output.size());
  }

  static std::string WireUpTo(const Cell& cell) {
    const std::vector<std::string> commands = CommandsOf(cell.row->wire);
    std::string wire;
    for (size_t i = 0; i <= cell.command; ++i) wire += commands[i];
    return wire;
  }

  static const Bytes& OutputOfFailure(const Cell& cell) {
    static const Bytes nothing;
    return cell.command > 0 ? cell.row->first_output : nothing;
  }
};

// Lanes are processes: the library is one for a process, and one command at a time waits for its
// answer there. The system does not give the boards of all tests at once very many of them.
size_t LanesFor(const CallRow& row) {
  const bool is_slow = row.post_delay_ms >= 500 || row.answers.size() > 2;
  return is_slow ? 12 : 4;
}

pid_t StartLane(const Family& family, const std::vector<const Cell*>& cells) {
  const pid_t parent = getpid();
  const pid_t child = fork();
  if (child != 0) return child;
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (getppid() != parent) _exit(2);
  try {
    Lane lane(family);
    lane.Run(cells);
  } catch (const std::exception& error) {
    ADD_FAILURE() << error.what();
  }
  fflush(nullptr);
  _exit(testing::Test::HasFailure() ? 1 : 0);
}

struct Operation {
  const McuFamily* family;
  const CallRow* row;
};

void PrintTo(const Operation& operation, std::ostream* stream) {
  *stream << operation.row->name;
}

std::vector<Operation> AllOperations() {
  std::vector<Operation> operations;
  for (const McuFamily& family : McuFamilies()) {
    for (const CallRow& row : family.operations) operations.push_back({&family, &row});
  }
  return operations;
}

class FaultMatrix : public testing::TestWithParam<Operation> {};

TEST_P(FaultMatrix, EndsTheCallAsStatedAndTheNextOneIsWhole) {
  const CallRow& row = *GetParam().row;
  ASSERT_EQ(row.answers.size(), CommandsOf(row.wire).size()) << "one answer for each command";
  const std::vector<Cell> cells = CellsOf(row);
  std::vector<std::vector<const Cell*>> lanes(LanesFor(row));
  for (size_t i = 0; i < cells.size(); ++i) lanes[i % lanes.size()].push_back(&cells[i]);
  RecordProperty("cells", static_cast<int>(cells.size()));

  fflush(nullptr);
  std::vector<pid_t> children;
  for (const auto& lane : lanes) children.push_back(StartLane(GetParam().family->switches, lane));
  for (const pid_t child : children) {
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "see above; wait status " << status;
  }
}

std::string TestName(const testing::TestParamInfo<Operation>& info) {
  std::string name;
  for (const char character : info.param.row->name) {
    name += isalnum(static_cast<unsigned char>(character)) != 0 ? character : '_';
  }
  return name;
}

INSTANTIATE_TEST_SUITE_P(EachFault, FaultMatrix, testing::ValuesIn(AllOperations()), TestName);

std::string ExportOf(const CallRow& row) {
  return row.name.substr(0, row.name.find(' '));
}

TEST(TableOfOperations, HoldsEveryExportOfTheFamiliesThatTalkToTheMcu) {
  std::set<std::string> in_table;
  for (const Operation& operation : AllOperations()) in_table.insert(ExportOf(*operation.row));
  for (const CallRow& row : SilentOperations()) in_table.insert(ExportOf(row));

  std::stringstream text;
  text << std::ifstream(ROLU_HEADER).rdbuf();
  const std::string header = text.str();
  std::set<std::string> declared;
  const std::regex declaration("KAVO_ROLU_API ROLU_STATUS KAVO_ROLU_((VPM|WD|GSENSOR|PERIPHERALCTRL)_\\w+)");
  for (std::sregex_iterator match(header.begin(), header.end(), declaration), end; match != end; ++match) {
    declared.insert((*match)[1]);
  }
  EXPECT_EQ(in_table, declared);
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
