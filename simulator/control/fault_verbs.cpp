// What goes wrong, on the wire and with the devices.

#include "protocol/values.h"
#include "simulator/control/board_faults.h"
#include "simulator/control/board_files.h"
#include "simulator/control/desk.h"
#include "simulator/control/verb.h"

namespace rolu_sim {
namespace {

constexpr char kFaults[] = "Faults";

constexpr std::string_view kAnyCommand = "any";

// The library waits 3 s for an answer.
constexpr char kLateAnswer[] = "3200ms";

std::vector<std::string> ErrorReplies() {
  return {rolu_protocol::kErrorReplies.begin(), rolu_protocol::kErrorReplies.end()};
}

AnswerFault FaultOf(AnswerFaultKind kind, const Arguments& arguments) {
  AnswerFault fault;
  fault.kind = kind;
  fault.command = arguments.Text("command");
  if (fault.command == kAnyCommand) fault.command.clear();
  if (arguments.Has("times")) fault.times = static_cast<int>(arguments.Integer("times"));
  fault.chance = arguments.Number("chance");
  return fault;
}

std::string AddFault(Desk& desk, AnswerFault fault) {
  std::string remark = IsRandom(fault) ? desk.AnnounceSeed() : std::string();
  desk.faults().Add(std::move(fault));
  return remark;
}

std::string LoseCommands(Desk& desk, const Arguments& arguments) {
  return AddFault(desk, FaultOf(AnswerFaultKind::kSilence, arguments));
}

std::string DelayAnswers(Desk& desk, const Arguments& arguments) {
  AnswerFault fault = FaultOf(AnswerFaultKind::kDelay, arguments);
  fault.delay = arguments.Duration("time");
  return AddFault(desk, std::move(fault));
}

std::string AnswerWithError(Desk& desk, const Arguments& arguments) {
  AnswerFault fault = FaultOf(AnswerFaultKind::kErrorReply, arguments);
  fault.error = arguments.Text("error");
  return AddFault(desk, std::move(fault));
}

template <AnswerFaultKind kind>
std::string DistortAnswers(Desk& desk, const Arguments& arguments) {
  AnswerFault fault = FaultOf(kind, arguments);
  fault.count = static_cast<std::size_t>(arguments.Integer("characters"));
  return AddFault(desk, std::move(fault));
}

std::string HangUp(Desk& desk, const Arguments& /*arguments*/) {
  desk.board_faults().HangUp();
  return {};
}

std::string Replug(Desk& desk, const Arguments& /*arguments*/) {
  desk.board_faults().Replug();
  return {};
}

std::string RemoveFile(Desk& desk, const Arguments& arguments) {
  desk.board_faults().RemoveFile(arguments.Text("file"));
  return {};
}

std::string FailFile(Desk& desk, const Arguments& arguments) {
  desk.board_faults().FailFile(arguments.Text("file"), arguments.Text("operation"), arguments.Text("error"));
  return {};
}

std::string RefuseAddress(Desk& desk, const Arguments& arguments) {
  desk.board_faults().RefuseAddress(static_cast<std::uint8_t>(arguments.Integer("address")),
                                    arguments.Text("stage"), arguments.Text("error"));
  return {};
}

std::string EndAllFaults(Desk& desk, const Arguments& /*arguments*/) {
  desk.faults().Clear();
  desk.board().mcu().ClearScript();
  desk.board_faults().EndAll();
  return {};
}

// The parameters of a fault of answers, with those of its own between the command and the rest.
std::vector<Parameter> AnswerParameters(const std::vector<Parameter>& own = {}) {
  std::vector<Parameter> parameters = {
      Optional(Text("command", "which commands: those that begin like this, or any"), kAnyCommand)};
  parameters.front().takes_rest = false;
  if (!own.empty() && own.front().required) {
    parameters.front().required = true;
    parameters.front().fallback = nullptr;
  }
  parameters.insert(parameters.end(), own.begin(), own.end());
  parameters.push_back(
      Optional(Integer("times", 1, 1000000, "for how many commands; without it, until fault-clear")));
  parameters.push_back(Optional(Number("chance", 0, 1, "", "how probable it is for each command"), 1.0));
  return parameters;
}

Parameter Characters(long fallback, long most, const char* help) {
  return Optional(Integer("characters", 1, most, help), fallback);
}

}  // namespace

std::vector<Verb> FaultVerbs() {
  constexpr long kLongestLine = 4000;
  const Parameter file = Choice("file", BoardFileNames(), "the device file");
  const Parameter error = Choice("error", ErrnoNames(), "the error");
  return {
      {"fault-silence", kFaults, "Loses commands: the MCU neither carries them out nor answers",
       AnswerParameters(), LoseCommands},
      {"fault-delay", kFaults, "Delays answers", AnswerParameters({Duration("time", "by how much")}),
       DelayAnswers},
      {"fault-late", kFaults,
       "Delays answers until nobody waits for them any more (3 s is how long the library does)",
       AnswerParameters({Optional(Duration("time", "by how much"), kLateAnswer)}), DelayAnswers},
      {"fault-error", kFaults, "Refuses commands with an error reply; the MCU does not carry them out",
       AnswerParameters(
           {Optional(Choice("error", ErrorReplies(), "the reply"), rolu_protocol::kRefusedParameterReply)}),
       AnswerWithError},
      {"fault-garble", kFaults, "Garbles characters of answers, at random",
       AnswerParameters({Characters(1, 64, "how many")}), DistortAnswers<AnswerFaultKind::kGarble>},
      {"fault-drop", kFaults, "Drops characters of answers, at random",
       AnswerParameters({Characters(1, 64, "how many")}), DistortAnswers<AnswerFaultKind::kDropBytes>},
      {"fault-long-line", kFaults, "Makes answers too long",
       AnswerParameters({Characters(80, kLongestLine, "how long the line is")}),
       DistortAnswers<AnswerFaultKind::kLongLine>},
      {"fault-hang-up", kFaults, "Hangs the serial port up, as a pulled plug does", {}, HangUp},
      {"replug",
       kFaults,
       "Brings the serial port back, after fault-hang-up or fault-missing serial",
       {},
       Replug},
      {"fault-missing", kFaults, "Removes a device file", {file}, RemoveFile},
      {"fault-file",
       kFaults,
       "Lets an operation on a device file fail",
       {file, Choice("operation", {"open", "read", "write", "ioctl"}, "the operation"), error},
       FailFile},
      {"fault-i2c",
       kFaults,
       "Lets a device on the I2C bus refuse",
       {Integer("address", 0, 0x7F, "the 7-bit address"),
        Optional(Choice("stage", {"transfer", "select"}, "what it refuses"), "transfer"),
        Optional(error, "EREMOTEIO")},
       RefuseAddress},
      {"fault-clear", kFaults, "Ends all faults, and the answers of `answer`", {}, EndAllFaults},
  };
}

}  // namespace rolu_sim
