// rolu-sim ctl: steers and reads a board that is up.

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/file.h>

#include <algorithm>
#include <cerrno>
#include <iostream>

#include "cli/duration.h"
#include "cli/help_text.h"
#include "cli/messages.h"
#include "simulator/desk/control_client.h"
#include "simulator/desk/readings.h"
#include "simulator/desk/trace.h"
#include "simulator/program/board_environment.h"
#include "simulator/program/command.h"
#include "simulator/program/installed_files.h"
#include "simulator/system/unique_fd.h"

namespace rolu_sim {
namespace {

using namespace std::string_literals;

// The words of ctl that are not verbs. They have no `apply`.
const std::vector<Verb>& OwnWords() {
  constexpr char kReading[] = "Reading";
  constexpr char kBoard[] = "Board";
  static const std::vector<Verb> words = {
      {.name = "get",
       .help = "Prints some readings",
       .parameters = {OneOf("name", NamesOf(Readings()), "what is to be read")},
       .subject = kReading},
      {.name = "show",
       .help = "Prints all readings but the long lists (i2c-registers, i2c-transfers, commands)",
       .subject = kReading},
      {.name = "wait",
       .help =
           "Waits until the trace has a line that begins with a text, or an event or words that contain the "
           "text",
       .parameters = {Text("text", "the text"), Optional(Duration("timeout", "for how long"), "30s"),
                      Optional(Integer("times", 1, 1000000, "how many matches"), 1),
                      Optional(
                          OneOf("from", {"start", "next"},
                                "from the board's start, or only what comes next; \"next\" alone will do"),
                          "start")},
       .subject = kReading},
      {.name = "play",
       .help = "Plays a scenario from now on, in place of the one that is being played",
       .parameters = {Text("scenario", "a file, or the name of a ready-made one")},
       .subject = kBoard},
      {.name = "stop", .help = "Takes the board down", .subject = kBoard},
  };
  return words;
}

// All words by subject, one per line.
std::string ListOfWords() {
  std::string text;
  std::string subject;
  for (const Verb& verb : CtlWords()) {
    if (verb.subject != subject) {
      subject = verb.subject;
      text += fmt::format("{}{}:\n", text.empty() ? "" : "\n", subject);
    }
    text += ListItem(Synopsis(verb), verb.help);
  }
  text += "\nReadings:\n";
  for (const Reading& reading : Readings()) text += ListItem(reading.name, reading.help);
  return text;
}

struct CtlOptions {
  BoardChoice board;
  bool json = false;
};

// The value of a word that is "name=value" or only the value.
std::string ValueOf(const std::string& word, const std::string& name) {
  return word.starts_with(name + '=') ? word.substr(name.size() + 1) : word;
}

ControlClient Connect(const CtlOptions& options) {
  return ControlClient(BoardDirectory(options.board.directory), options.board.patience);
}

Json Ask(const CtlOptions& options, const Json& request) {
  try {
    return Connect(options).Ask(request);
  } catch (const Json::type_error&) {
    throw UsageError("a word is not UTF-8");
  }
}

// Prints an answer: unchanged with --json, else in words.
int Report(const CtlOptions& options, const Json& answer) {
  if (!answer["ok"].get<bool>()) {
    rolu::SayProblem(answer["error"].get<std::string>());
    return answer["kind"] == "refused" ? rolu::kRefused : rolu::kWrongUse;
  }
  if (options.json) {
    std::cout << answer.dump() << '\n';
  } else if (answer.contains("remark")) {
    std::cout << answer["remark"].get<std::string>() << '\n';
  }
  return 0;
}

int Help(const std::vector<std::string>& words) {
  const std::vector<Verb> verbs = CtlWords();
  const auto named =
      std::ranges::find_if(words, [&](const std::string& word) { return FindVerb(word, verbs) != nullptr; });
  rolu::PrintHelp(named == words.end() ? ListOfWords() : FullHelp(*FindVerb(*named, verbs)), "rolu-sim");
  return 0;
}

int Get(const CtlOptions& options, std::vector<std::string> names) {
  for (std::string& name : names) {
    name = ValueOf(name, "name");
    CheckReading(name);
  }
  const Json answer = Ask(options, {{"get", names}});
  if (!answer["ok"].get<bool>()) return Report(options, answer);
  std::cout << (options.json ? answer["board"].dump(2) + '\n' : ReadingsAsText(answer["board"]));
  return 0;
}

// When this returns, the served board has left its directory. The directory may be gone soon after the
// request, so it is opened before.
int Stop(const CtlOptions& options) {
  const UniqueFd directory(
      open(BoardDirectory(options.board.directory).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  const int status = Report(options, Ask(options, {{"stop", true}}));
  while (flock(directory.get(), LOCK_SH) != 0 && errno == EINTR) continue;
  return status;
}

int Play(const CtlOptions& options, const std::vector<std::string>& rest) {
  if (rest.size() != 1) throw UsageError("play takes one scenario, a file or a name");
  const ScenarioFile file = ReadScenarioFile(ValueOf(rest.front(), "scenario"));
  return Report(options, Ask(options, {{"play", {{"name", file.name}, {"text", file.text}}}}));
}

// Actions from the desk do not count: whoever took an action knows of it.
bool Matches(const TraceRecord& record, const std::string& text) {
  if (record.direction == TraceDirection::kDesk) return false;
  return record.line.starts_with(text) || record.words.find(text) != std::string::npos;
}

int Wait(const CtlOptions& options, const Arguments& given) {
  const auto& text = given.Get<std::string>("text");
  const auto timeout = given.Get<std::chrono::milliseconds>("timeout");
  ControlClient client = Connect(options);
  client.Ask({{"trace", given.Get<std::string>("from") == "next" ? "next" : "follow"}});
  const auto deadline = std::chrono::steady_clock::now() + timeout;
  long times_left = given.Integer<long>("times");
  while (const auto line = client.ReadLine(deadline)) {
    const TraceRecord record = TraceRecordFromJson(Json::parse(*line));
    if (!Matches(record, text) || --times_left > 0) continue;
    std::cout << (options.json ? *line : ToText(record)) << '\n';
    return 0;
  }
  if (!client.TimedOut()) throw NoBoardError("the board went away");
  rolu::SayProblem(fmt::format("\"{}\" did not come within {}", text, rolu::FormatDuration(timeout)));
  return rolu::kPartlyDone;
}

int Ctl(const CtlOptions& options, const std::vector<std::string>& words) {
  const std::string& word = words.front();
  const bool asks_for_help = word == "help" || std::ranges::find(words, "--help") != words.end();
  if (asks_for_help) return Help(words);
  std::vector<std::string> rest(words.begin() + 1, words.end());
  if (word == "wait" && rest.size() > 1) std::replace(rest.begin() + 1, rest.end(), "next"s, "from=next"s);
  if (word == "get") return Get(options, rest);
  if (word == "play") return Play(options, rest);
  const std::vector<Verb> verbs = CtlWords();
  const Verb* const verb = FindVerb(word, verbs);
  if (verb == nullptr) throw UsageError(UnknownVerb(word, verbs));
  Json members = MembersFromWords(*verb, rest);
  const Arguments given = CheckArguments(*verb, members);
  if (word == "show") return Get(options, {});
  if (word == "wait") return Wait(options, given);
  if (word == "stop") return Stop(options);
  members["do"] = word;
  return Report(options, Ask(options, members));
}

}  // namespace

std::string ListItem(const std::string& left, const std::string& right) {
  constexpr std::size_t kColumn = 26;
  if (left.size() < kColumn) return fmt::format("  {:<{}}{}\n", left, kColumn, right);
  return fmt::format("  {}\n  {:<{}}{}\n", left, "", kColumn, right);
}

std::vector<Verb> CtlWords() {
  std::vector<Verb> all = OwnWords();
  all.insert(all.end(), Verbs().begin(), Verbs().end());
  return all;
}

void BringCtlOptionsForward(std::vector<std::string>& words) {
  auto front = words.begin() + 1;
  for (auto word = front; word != words.end();) {
    const bool takes_next = *word == "--board" || *word == "--wait";
    const bool is_option =
        takes_next || *word == "--json" || word->starts_with("--board=") || word->starts_with("--wait=");
    const auto end = word + (takes_next && word + 1 != words.end() ? 2 : 1);
    if (is_option) front = std::rotate(front, word, end);
    word = end;
  }
}

void AddCtlCommand(CLI::App& app, Invocation& invocation) {
  CLI::App* const ctl =
      NewCommand(app, "ctl", "Steers and reads a board that is up", "rolu-sim ctl [OPTIONS] WORD [VALUE...]",
                 "Values go in their order, or as name=value. rolu-sim ctl WORD --help says more.\n\n" +
                     ListOfWords() + '\n');
  ctl->prefix_command();
  const auto options = std::make_shared<CtlOptions>();
  ctl->add_flag("--json", options->json, "Print answers as JSON");
  AddBoardChoice(*ctl, options->board);
  OnRun(ctl, invocation, [=, &invocation] { return Ctl(*options, WordsFor(*ctl, invocation, "WORD")); });
}

}  // namespace rolu_sim
