// Verbs that make faults on the wire and of the devices.

#include <algorithm>
#include <optional>

#include "protocol/values.h"
#include "simulator/desk/desk.h"

namespace rolu_sim {
namespace {

constexpr char kAnyCommand[] = "any";

// A verb that makes a fault of answers. A parameter of its own stands between the command and the optional
// ones.
struct AnswerFaultVerb {
  std::string name;
  AnswerFaultKind kind;
  std::string help;
  std::optional<Parameter> own;
};

// Where several verbs make faults of one kind, the first verb names the kind.
std::vector<AnswerFaultVerb> AnswerFaultVerbs() {
  const auto characters = [](long fallback, long most, const char* help) {
    return Optional(Integer("characters", 1, most, help), fallback);
  };
  return {
      {"fault-silence", AnswerFaultKind::kSilence,
       "Loses commands: the MCU neither carries them out nor answers", std::nullopt},
      {"fault-delay", AnswerFaultKind::kDelay, "Delays answers", Duration("time", "by how much")},
      {"fault-late", AnswerFaultKind::kDelay,
       "Delays answers until the library no longer waits for them (it waits 3 s)",
       Optional(Duration("time", "by how much"), "3200ms")},
      {"fault-error", AnswerFaultKind::kErrorReply,
       "Refuses commands with an error reply; the MCU does not carry them out",
       Optional(OneOf("error", {rolu_protocol::kErrorReplies.begin(), rolu_protocol::kErrorReplies.end()},
                      "the reply"),
                rolu_protocol::kRefusedParameterReply)},
      {"fault-garble", AnswerFaultKind::kGarble, "Garbles characters of answers, at random",
       characters(1, 64, "how many")},
      {"fault-drop", AnswerFaultKind::kDropBytes, "Drops characters of answers, at random",
       characters(1, 64, "how many")},
      {"fault-long-line", AnswerFaultKind::kLongLine, "Makes answers too long",
       characters(80, 4000, "how long the line is")},
  };
}

std::string AddFault(Desk& desk, AnswerFaultKind kind, const Arguments& given) {
  AnswerFault fault;
  fault.kind = kind;
  fault.command = given.Get<std::string>("command");
  if (fault.command == kAnyCommand) fault.command.clear();
  if (given.Has("times")) fault.times = given.Integer<int>("times");
  fault.chance = given.Get<double>("chance");
  if (given.Has("time")) fault.delay = given.Get<std::chrono::milliseconds>("time");
  if (given.Has("error")) fault.error = given.Get<std::string>("error");
  if (given.Has("characters")) fault.count = given.Integer<std::size_t>("characters");
  std::string remark = IsRandom(fault) ? desk.AnnounceSeed() : std::string();
  desk.faults().Add(std::move(fault));
  return remark;
}

Verb VerbOf(const AnswerFaultVerb& row) {
  Parameter command = Text("command", "which commands: those that begin like this, or any");
  command.takes_rest = false;
  // A required parameter does not stand behind an optional one.
  const bool is_needed = row.own && row.own->required;
  std::vector<Parameter> parameters = {is_needed ? command : Optional(command, kAnyCommand)};
  if (row.own) parameters.push_back(*row.own);
  parameters.push_back(
      Optional(Integer("times", 1, 1000000, "for how many commands; without it, until fault-clear")));
  parameters.push_back(Optional(Number("chance", 0, 1, "", "how probable it is for each command"), 1.0));
  return {row.name, row.help, parameters, Doing([kind = row.kind](Desk& desk, const Arguments& given) {
            return AddFault(desk, kind, given);
          })};
}

}  // namespace

std::string NameOf(AnswerFaultKind kind) {
  static const std::vector<AnswerFaultVerb> kRows = AnswerFaultVerbs();
  return std::ranges::find(kRows, kind, &AnswerFaultVerb::kind)->name.substr(kFaultPrefix.size());
}

std::vector<Verb> FaultVerbs() {
  std::vector<Verb> verbs;
  for (const AnswerFaultVerb& row : AnswerFaultVerbs()) verbs.push_back(VerbOf(row));
  const Parameter file = OneOf("file", BoardFileNames(), "the device file");
  const Parameter error = Choice("error", DeviceErrors(), "the error");
  const std::vector<Verb> others = {
      {"fault-hang-up", "Hangs the serial port up, as a pulled plug does", {}, Doing([](Desk& desk) {
         desk.board_faults().HangUp();
       })},
      {"replug",
       "Brings the serial port back, after fault-hang-up or fault-missing serial",
       {},
       Doing([](Desk& desk) { desk.board_faults().Replug(); })},
      {"fault-missing", "Removes a device file", {file}, Doing([](Desk& desk, const Arguments& given) {
         desk.board_faults().RemoveFile(given.Get<std::string>("file"));
       })},
      {"fault-file",
       "Lets an operation on a device file fail",
       {file, Choice("operation", FileOperations(), "the operation"), error},
       Doing([](Desk& desk, const Arguments& given) {
         desk.board_faults().FailFile(given.Get<std::string>("file"), given.Get<FileOperation>("operation"),
                                      given.Get<int>("error"));
       })},
      {"fault-i2c",
       "Lets a device on the I2C bus refuse",
       {Integer("address", 0, 0x7F, "the 7-bit address"),
        Optional(OneOf("stage", {"transfer", "select"}, "what it refuses"), "transfer"),
        Optional(error, "EREMOTEIO")},
       Doing([](Desk& desk, const Arguments& given) {
         desk.board_faults().RefuseAddress(given.Integer<std::uint8_t>("address"),
                                           given.Get<std::string>("stage"), given.Get<int>("error"));
       })},
      {"fault-clear", "Ends all faults, and the answers of `answer`", {}, Doing([](Desk& desk) {
         desk.faults().Clear();
         desk.board().mcu().ClearScript();
         desk.board_faults().EndAll();
       })},
  };
  verbs.insert(verbs.end(), others.begin(), others.end());
  return verbs;
}

}  // namespace rolu_sim
