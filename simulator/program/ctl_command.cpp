// rolu-sim ctl: steers and reads a board that is up.

#include <fmt/format.h>

#include <algorithm>
#include <iostream>

#include "cli/duration.h"
#include "cli/exit_status.h"
#include "cli/messages.h"
#include "simulator/control/control_client.h"
#include "simulator/control/readings.h"
#include "simulator/control/verb.h"
#include "simulator/program/board_environment.h"
#include "simulator/program/commands.h"
#include "simulator/program/control_words.h"
#include "simulator/program/served_directory.h"
#include "simulator/scenario/scenario_files.h"
#include "simulator/trace/trace_record.h"

namespace rolu_sim {
namespace {

// The value of a word that may be "name=value" as well as the value alone.
std::string ValueOf(const std::string& word, const std::string& name) {
  return word.rfind(name + '=', 0) == 0 ? word.substr(name.size() + 1) : word;
}

class CtlCommand {
 public:
  explicit CtlCommand(const CtlOptions& options)
      : options_(options), words_(options.words), json_(options.json) {}

  int Do() {
    const bool asks_for_help = std::find(words_.begin(), words_.end(), "--help") != words_.end();
    if (asks_for_help || words_.front() == "help") return Help();
    const std::vector<std::string> rest(words_.begin() + 1, words_.end());
    const std::string& word = words_.front();
    if (word == "show" || word == "stop") MembersFromWords(ControlWord(word), rest);
    if (word == "get" || word == "show") return Get(rest);
    if (word == "wait") return Wait(rest);
    if (word == "play") return Play(rest);
    if (word == "stop") return Stop();
    return Perform();
  }

 private:
  Json Ask(const Json& request) {
    ControlClient client(BoardDirectory(options_.board.directory), options_.board.patience);
    try {
      return client.Ask(request);
    } catch (const Json::type_error&) {
      throw UsageError("a word is not UTF-8");
    }
  }

  // Answers are said as they are with --json, else in words.
  int Report(const Json& answer) const {
    if (!answer["ok"].get<bool>()) {
      rolu::SayProblem(answer["error"].get<std::string>());
      return answer["kind"] == "refused" ? rolu::kRefused : rolu::kWrongUse;
    }
    if (json_) {
      std::cout << answer.dump() << '\n';
    } else if (answer.contains("remark")) {
      std::cout << answer["remark"].get<std::string>() << '\n';
    }
    return 0;
  }

  int Help() const {
    const auto verb = std::find_if(words_.begin(), words_.end(),
                                   [](const std::string& word) { return FindVerb(word) != nullptr; });
    std::cout << (verb == words_.end() ? ControlHelp() : FullHelp(*FindVerb(*verb)));
    return 0;
  }

  int Get(std::vector<std::string> names) {
    for (std::string& name : names) {
      name = ValueOf(name, "name");
      if (FindReading(name) == nullptr) throw UsageError(UnknownReading(name));
    }
    const Json answer = Ask({{"get", names}});
    if (!answer["ok"].get<bool>()) return Report(answer);
    std::cout << (json_ ? answer["board"].dump(2) + '\n' : ReadingsAsText(answer["board"]));
    return 0;
  }

  // A served board has left its directory when this comes back.
  int Stop() {
    const BoardEnd end(BoardDirectory(options_.board.directory));
    const int status = Report(Ask({{"stop", true}}));
    end.Wait();
    return status;
  }

  int Play(const std::vector<std::string>& rest) {
    if (rest.size() != 1) throw UsageError("play takes one scenario, a file or a name");
    const ScenarioFile file = ReadScenarioFile(ValueOf(rest.front(), "scenario"));
    return Report(Ask({{"play", {{"name", file.name}, {"text", file.text}}}}));
  }

  int Perform() {
    if (FindVerb(words_.front()) == nullptr) throw UsageError(UnknownWord(words_.front()));
    const Action action = ParseAction(words_);
    Json request = {{"do", action.verb->name}};
    request.update(action.arguments.values());
    return Report(Ask(request));
  }

  int Wait(const std::vector<std::string>& rest) {
    std::vector<Problem> problems;
    const Verb& wait = ControlWord("wait");
    const Arguments arguments = CheckArguments(wait, MembersFromWords(wait, rest), {}, problems);
    if (!problems.empty()) throw UsageError(problems.front().text);
    ControlClient client(BoardDirectory(options_.board.directory), options_.board.patience);
    client.Ask({{"trace", "follow"}});
    const auto deadline = std::chrono::steady_clock::now() + arguments.Duration("timeout");
    long times_left = arguments.Integer("times");
    while (const auto line = client.ReadLine(deadline)) {
      const TraceRecord record = TraceRecordFromJson(Json::parse(*line));
      if (!Matches(record, arguments.Text("text")) || --times_left > 0) continue;
      std::cout << (json_ ? *line : ToText(record)) << '\n';
      return 0;
    }
    if (!client.TimedOut()) throw NoBoardError("the board went away");
    rolu::SayProblem(fmt::format("\"{}\" did not come within {}", arguments.Text("text"),
                                 rolu::FormatDuration(arguments.Duration("timeout"))));
    return rolu::kPartlyDone;
  }

  // What was done to the board by hand is known to who did it.
  static bool Matches(const TraceRecord& record, const std::string& text) {
    if (record.direction == TraceDirection::kDesk) return false;
    return record.line.compare(0, text.size(), text) == 0 || record.words.find(text) != std::string::npos;
  }

  const CtlOptions& options_;
  const std::vector<std::string>& words_;
  const bool json_;
};

}  // namespace

int Ctl(const CtlOptions& options) {
  return CtlCommand(options).Do();
}

}  // namespace rolu_sim
