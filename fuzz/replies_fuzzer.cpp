// Any reply line: what the functions make of it that read its fields, and what each operation makes of it
// (the status, every byte of the caller's memory, what the MCU is sent, and what the power manager has
// learned when it came up), compared with what the interface promises, told in the plainest way.
#include <fcntl.h>
#include <unistd.h>

#include <array>

#include "fuzz/answered_link.h"
#include "fuzz/hurried_time.h"
#include "fuzz/input.h"
#include "mcu/line_assembler.h"
#include "mcu/unsolicited.h"
#include "simulator/board.h"
#include "simulator/preloaded.h"
#include "tests/oracle/field_checks.h"
#include "tests/oracle/meaning.h"
#include "tests/oracle/operations.h"
#include "tests/oracle/start_up.h"
#include "tests/oracle/wire_model.h"

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

const CallRow& RowOf(const std::string& name) {
  for (const Operation& operation : rolu_test::AllOperations()) {
    if (operation.row->name == name) return *operation.row;
  }
  rolu_fuzz::Fail("no row " + name);
}

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

// The lines that answer the command, whose last one is `reply`. The clock's setting is answered with two,
// and the first does not matter.
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
  alignas(std::max_align_t) rolu_test::OutputMemory output = rolu_test::MemoryWith({});
  const ROLU_STATUS status = row.call(output.data());
  return {status, output, rolu_fuzz::commands_sent};
}

// Switches a family while the MCU answers as it should.
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

// The table tells the same of the healthy MCU as the meanings do, and of one that falls silent.
void CompareWithTable(const CallRow& row) {
  Replies replies = HealthyReplies(row);
  const Ending healthy = MeaningOf(row, replies);
  constexpr char kDiffer[] = "the table and the meanings differ";
  if (healthy.status != row.status || healthy.output != rolu_test::MemoryWith(row.output) ||
      healthy.wire != row.wire) {
    FailIf(row.name, kDiffer);
  }
  replies.back().reset();
  const rolu_test::Bytes first = replies.size() > 1 ? row.first_output : rolu_test::Bytes{};
  if (row.indifferent.empty() && MeaningOf(row, replies).output != rolu_test::MemoryWith(first))
    FailIf(row.name, kDiffer);
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

// The beginning of the healthy reply and anything behind it, more than it, less than it, the like of it,
// or one character changed.
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

// The codes, registers and flags are numbers of two digits: of these none is left to chance.
void TryAllCodes(const CallRow& row) {
  if (row.answers.size() != 1 || row.output.empty()) return;
  for (int code = 0; code <= UINT8_MAX; ++code) {
    const Replies replies = {Hexadecimal({static_cast<char>(code)})};
    FailIf(row.name, FaultOf(Make(row, replies), MeaningOf(row, replies)));
  }
}

Replies AnyReplies(const CallRow& row, Input& input) {
  Replies replies = HealthyReplies(row);
  for (auto& reply : replies) {
    if (replies.size() == 1 || input.Byte() % 2 == 1) reply = AnyReply(*reply, input);
  }
  return replies;
}

void CompareRange(CAR_BATTERY_MODE mode, const BATTERY_INFO& expected) {
  const auto volts = [](const BATTERY_INFO& range) {
    return std::array{range.range_end, range.range_start, range.range_mid, range.range_mid_copy};
  };
  BATTERY_INFO range = {};
  if (KAVO_ROLU_VPM_GetLBPThresholdInfo(mode, &range) != ROLU_STATUS_SUCCESS ||
      volts(range) != volts(expected)) {
    FailIf("VPM_Initialize",
           mode == CAR_BATTERY_MODE_12V ? "another range of 12 V" : "another range of 24 V");
  }
}

void CompareFirmware(const std::string& expected) {
  VPM_FIRMWARE_INFO firmware = {};
  const ROLU_STATUS status = KAVO_ROLU_VPM_GetFWVersion(&firmware);
  std::string padded = expected;
  padded.resize(sizeof firmware.text);
  if (status != ROLU_STATUS_SUCCESS ||
      padded.compare(0, padded.size(), firmware.text, sizeof firmware.text) != 0) {
    FailIf("VPM_Initialize", "another firmware");
  }
}

// A threshold of 1 step is the scale itself.
void CompareScale(const std::string& getter, float scale) {
  const CallRow& row = RowOf(getter);
  const Made made = Make(row, {"1"});
  FailIf(row.name, FaultOf(made, ROLU_STATUS_SUCCESS, rolu_test::Written(scale), row.wire));
}

// The power manager comes up with any answers; afterwards it is up as in the table.
void CheckStartUp(const McuFamily& family, const CallRow& row, const Replies& replies) {
  rolu_test::StartUp learned;
  learned.Learn(HealthyReplies(row));
  learned.Learn(replies);
  BringDown(family);
  const Made made = Make(row, replies);
  FailIf(row.name, FaultOf(made, MeaningOf(row, replies)));
  Require(TakePrinted() == learned.printed, "another version was printed");
  CompareRange(CAR_BATTERY_MODE_12V, learned.range_12v);
  CompareRange(CAR_BATTERY_MODE_24V, learned.range_24v);
  if (made.status == ROLU_STATUS_SUCCESS) {
    CompareFirmware(learned.firmware);
    CompareScale("VPM_GetLBPThresholdFor12VSystem", learned.scale_12v);
    CompareScale("VPM_GetLBPThresholdFor24VSystem", learned.scale_24v);
    BringDown(family);
  }
  BringUp(family);
}

// An alarm sample is scaled as one that was asked for. Three axes, and the next time none is left.
void CheckAlarmSample(Input& input) {
  const int16_t axes[] = {input.Raw<int16_t>(), input.Raw<int16_t>(), input.Raw<int16_t>()};
  std::string message = "[GI:";
  int32_t scaled[3];
  for (size_t i = 0; i < 3; ++i) {
    const auto field = static_cast<uint16_t>(axes[i]);
    message += Hexadecimal({static_cast<char>(field >> 8U), static_cast<char>(field & 0xFFU)});
    scaled[i] = (axes[i] * 125 + 16) / 32;  // 1000/256, a half added, and the rest cut off
  }
  {
    const ScopedLock lock(*io_op_lock);
    HandleBracketedMessage((message + "]").c_str());
  }
  const auto get = [] {
    alignas(ROLU_GSENSOR_DATA) rolu_test::OutputMemory sample = rolu_test::MemoryWith({});
    const ROLU_STATUS status = rolu_test::Into(KAVO_ROLU_GSENSOR_GetAlarmData)(sample.data());
    return Made{status, sample};
  };
  FailIf("GSENSOR_GetAlarmData", FaultOf(get(), ROLU_STATUS_SUCCESS, rolu_test::Written(scaled), ""));
  FailIf("GSENSOR_GetAlarmData", FaultOf(get(), ROLU_STATUS_GSENSOR_NO_ALARM_DATA, {}, ""));
}

// With any line and any numbers.
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
  if (row.name == "GSENSOR_AlarmEnabled on") KAVO_ROLU_GSENSOR_AlarmEnabled(false);
}

rolu_sim::Board& TheBoard() {
  static rolu_sim::Board board;
  return board;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
  // The families' start-up also uses device files, and those of this machine are not meant.
  rolu_sim::EnsurePreloaded(*argc, *argv);
  TheBoard().AttachThisProcess();
  int ends[2];
  Require(pipe2(ends, O_NONBLOCK) == 0 && dup2(ends[1], STDOUT_FILENO) != -1, "no pipe");
  printed_end = ends[0];
  for (const McuFamily& family : rolu_test::McuFamilies()) {
    for (const CallRow& row : family.operations) CompareWithTable(row);
    BringUp(family);
    for (const CallRow& row : family.operations) TryAllCodes(row);
  }
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input input(data, size);
  const size_t also = input.Byte();
  if (also % 4 == 0) CheckFields(input);
  if (also % 8 == 1) CheckAlarmSample(input);
  for (size_t calls = 0; calls < kMostCalls && !input.empty(); ++calls) CheckOperation(input);
  return 0;
}
