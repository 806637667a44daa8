// Gives any reply line to the functions that read its fields and to each operation. Compares what they make
// of it (the status, every byte of the caller's memory, what the MCU receives, and what the power manager
// learns when it comes up) with a plain model of what the interface promises.
#include <fcntl.h>
#include <unistd.h>

#include <sstream>

#include "fuzz/input.h"
#include "fuzz/stand_ins.h"
#include "mcu/line_assembler.h"
#include "simulator/board.h"
#include "simulator/preloaded.h"
#include "tests/oracle/field_checks.h"
#include "tests/oracle/meaning.h"
#include "tests/oracle/operations.h"
#include "tests/oracle/plain_reading.h"
#include "tests/oracle/start_up.h"

namespace {

using rolu_fuzz::FailIf;
using rolu_fuzz::Input;
using rolu_fuzz::Require;
using rolu_test::CallRow;
using rolu_test::Ending;
using rolu_test::Made;
using rolu_test::McuFamily;
using rolu_test::Operation;
using rolu_test::Replies;

constexpr size_t kMostCalls = 4;

int printed_end = -1;

// Takes what the library printed since the last time.
std::string TakePrinted() {
  fflush(stdout);
  std::string printed;
  char bytes[256];
  for (ssize_t count; (count = read(printed_end, bytes, sizeof bytes)) > 0;) {
    printed.append(bytes, static_cast<size_t>(count));
  }
  return printed;
}

// Queues the lines that answer the command; the last one is `reply`. The MCU answers the setting of the clock
// with two lines, and the first does not matter.
void Answer(const rolu_test::Answer& healthy, const std::string& reply) {
  const size_t lines = rolu_test::ReplyLines(BytesOf(healthy)).size();
  for (size_t i = 1; i < lines; ++i) rolu_fuzz::replies_to_come.emplace_back("ERR-M08");
  rolu_fuzz::replies_to_come.push_back(reply);
}

Made Make(const CallRow& row, const Replies& replies) {
  rolu_fuzz::replies_to_come.clear();
  for (size_t i = 0; i < replies.size(); ++i) Answer(row.answers[i], *replies[i]);
  rolu_fuzz::commands_sent.clear();
  rolu_fuzz::slept_ms = 0;
  Made made = rolu_test::MakeCall(row.call);
  made.traffic = rolu_fuzz::commands_sent;
  return made;
}

// Brings a family up or down while the MCU answers as it should.
void Switch(const std::function<ROLU_STATUS()>& way, const CallRow* start_up) {
  rolu_fuzz::replies_to_come.assign(2, "OK");
  if (start_up != nullptr) {
    rolu_fuzz::replies_to_come.clear();
    for (const auto& reply : HealthyReplies(*start_up)) rolu_fuzz::replies_to_come.push_back(*reply);
  }
  Require(way() == ROLU_STATUS_SUCCESS, "a family cannot be switched");
  TakePrinted();
}

void BringUp(const McuFamily& family) {
  for (const CallRow& row : family.operations) {
    if (row.brings_up) Switch(family.switches.initialize, &row);
  }
}

void BringDown(const McuFamily& family) {
  Switch(family.switches.deinitialize, nullptr);
}

// Checks that the readings give for the healthy MCU's replies what the table says.
void CompareWithTable(const CallRow& row) {
  const Ending healthy = MeaningOf(row, HealthyReplies(row));
  Require(healthy.status == row.status && healthy.output == rolu_test::MemoryWith(row.output) &&
              healthy.wire == row.wire,
          row.name.c_str());
}

bool IsReply(const std::string& line) {
  const std::vector<std::string> lines = rolu_test::ReplyLines(line + '\n');
  return lines.size() == 1 && lines.front() == line;
}

// Its bytes in hexadecimal, as the MCU writes its numbers.
std::string Hexadecimal(const std::string& bytes) {
  std::string digits;
  for (const char byte : bytes) {
    char two[3];
    snprintf(two, sizeof two, "%02X", static_cast<unsigned char>(byte));
    digits += two;
  }
  return digits;
}

std::string Likely(size_t length, Input& input) {
  constexpr char kCharacters[] = "0123456789ABCDEFabcdefxX+- \tOIN.*";
  std::string text;
  for (; length > 0; --length) text += kCharacters[input.Below(sizeof kCharacters - 1)];
  return text;
}

// The beginning of the healthy reply and anything behind it, a longer reply, a shorter one, hexadecimal
// digits of its length, likely characters, or the reply with one character changed.
std::string AnyLine(const std::string& healthy, Input& input) {
  std::string line = healthy;
  switch (input.Below(6)) {
    case 0:
      line.resize(input.Below(healthy.size() + 1));
      return line + input.Text(input.Below(kLineCapacity));
    case 1:
      return line + Likely(1 + input.Below(4), input);
    case 2:
      line.resize(input.Below(healthy.size()));
      return line;
    case 3:
      return Hexadecimal(input.Text(std::max<size_t>(1, healthy.size() / 2)));
    case 4:
      return Likely(input.Below(16), input);
    default:
      line[input.Below(line.size())] = static_cast<char>(input.Byte());
      return line;
  }
}

std::string AnyReply(const std::string& healthy, Input& input) {
  const std::string line = AnyLine(healthy, input).substr(0, kLineCapacity - 1);
  return IsReply(line) ? line : healthy;
}

// Lines that answer no command, or another one, or nearly this one.
std::vector<std::string> OddLines() {
  std::istringstream texts(
      "0|1|2|3|7|13|1x|?0|?1|000000|0000000|00009B|01E101|0AAB|0E07|0FA0|10030|12345|123456789|0x12C| 0x2eb "
      "V|"
      " 12,345|-1|-5|8000|A0C|F0A|FFFFFFFF|*PL|*PLT:|*PLT:AB|ERR|ERR-M05|-ERR-W09|OK|on|O|ONLY|none|later|"
      "FFFFFFFFFFFFFF|V7FFF800000000|V00010002|I00000000|x0002FFFEFF00");
  std::vector<std::string> lines;
  for (std::string line; std::getline(texts, line, '|');) lines.push_back(line);
  for (const char character : {'x', '1', 'F'}) lines.emplace_back(kLineCapacity - 1, character);
  lines.push_back("01" + std::string(kLineCapacity - 3, 'x'));
  for (size_t flag = 0; flag < 16; ++flag) {
    lines.emplace_back(16, '0');
    lines.back()[flag] = '1';
  }
  // The codes, registers and flags are numbers of two digits: all of these are tried.
  for (int code = 0; code <= UINT8_MAX; ++code) lines.push_back(Hexadecimal({static_cast<char>(code)}));
  return lines;
}

// Gives each odd line as the answer to each command of a call that reads one.
void TryOddLines(const CallRow& row) {
  if (row.readings.empty()) return;
  static const std::vector<std::string> lines = OddLines();
  for (size_t command = 0; command < row.answers.size(); ++command) {
    for (const std::string& line : lines) {
      Replies replies = HealthyReplies(row);
      replies[command] = line;
      FailIf(row.name + " answered '" + line + "'", FaultOf(Make(row, replies), MeaningOf(row, replies)));
    }
  }
}

Replies AnyReplies(const CallRow& row, Input& input) {
  Replies replies = HealthyReplies(row);
  for (auto& reply : replies) {
    if (replies.size() == 1 || input.Byte() % 2 == 1) reply = AnyReply(*reply, input);
  }
  return replies;
}

// Brings the power manager up with any answers; afterwards it is up as in the table.
void CheckStartUp(const McuFamily& family, const CallRow& row, const Replies& replies) {
  rolu_test::StartUp learned;
  learned.Learn(HealthyReplies(row));
  learned.Learn(replies);
  BringDown(family);
  const Made made = Make(row, replies);
  FailIf(row.name, FaultOf(made, MeaningOf(row, replies)));
  Require(TakePrinted() == learned.printed, "another version was printed");
  const bool is_up = made.status == ROLU_STATUS_SUCCESS;
  FailIf(row.name, learned.FaultOfLibrary(is_up));
  if (is_up) BringDown(family);
  BringUp(family);
}

// Calls the functions that read fields, with any line and any numbers.
void CheckFields(Input& input) {
  const auto volts = input.Raw<float>();
  Require(rolu_test::RawVoltsAgree(volts, input.Raw<float>()), "another raw voltage");
  Require(rolu_test::ClockRangesAgree(input.Raw<VPM_RTC_TIME>()), "a time is judged otherwise");
  Require(rolu_test::AlarmFieldsAgree(input.Byte()), "another alarm field");
  const size_t position = input.Byte() % 80U;
  const size_t width = input.Byte() % 12U;
  const auto character = input.Raw<int32_t>();
  const std::string reply = input.Text(kLineCapacity - 1).c_str();
  Require(rolu_test::NumbersAgree(reply), "another number");
  Require(rolu_test::FieldsAgree(reply, position, width), "another field");
  Require(rolu_test::CharactersAgree(reply, character), "another character");
  Require(rolu_test::CharactersAgree(reply, static_cast<int32_t>(position)), "another character");
  Require(rolu_test::FloatsAgree(reply), "another float");
  Require(rolu_test::ErrorsAgree(reply), "another status of a reply");
}

void CheckOperation(Input& input) {
  static const std::vector<Operation> operations = rolu_test::AllOperations();
  const Operation& operation = operations[input.Below(operations.size())];
  const CallRow& row = *operation.row;
  const McuFamily& family = *operation.family;
  const Replies replies = AnyReplies(row, input);
  if (row.name == "VPM_Initialize") return CheckStartUp(family, row, replies);

  if (row.brings_up) BringDown(family);
  const Made made = Make(row, replies);
  FailIf(row.name, FaultOf(made, MeaningOf(row, replies)));
  if (made.status != ROLU_STATUS_SUCCESS) return;
  Require(rolu_fuzz::slept_ms == row.post_delay_ms, "another post-delay");
  if (row.name == "GSENSOR_Deinitialize") BringUp(family);
  // An alarm that is on cannot be switched on.
  rolu_fuzz::replies_to_come.assign(1, "OK");
  if (row.undo) row.undo(nullptr);
}

rolu_sim::Board& TheBoard() {
  static rolu_sim::Board board;
  return board;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
  // The families' start-up also uses device files; these must be the board's, not this machine's.
  rolu_sim::EnsurePreloaded(*argc, *argv);
  TheBoard().AttachThisProcess();
  int ends[2];
  Require(pipe2(ends, O_NONBLOCK) == 0 && dup2(ends[1], STDOUT_FILENO) != -1, "no pipe");
  printed_end = ends[0];
  for (const McuFamily& family : rolu_test::McuFamilies()) {
    for (const CallRow& row : family.operations) CompareWithTable(row);
    BringUp(family);
    for (const CallRow& row : family.operations) TryOddLines(row);
  }
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input input(data, size);
  if (input.Byte() % 4 == 0) CheckFields(input);
  for (size_t calls = 0; calls < kMostCalls && !input.empty(); ++calls) CheckOperation(input);
  return 0;
}
