#include <fmt/format.h>

#include <iostream>

#include "cli/messages.h"
#include "simulator/desk/scenario.h"
#include "simulator/program/command.h"
#include "simulator/program/installed_files.h"

namespace rolu_sim {
namespace {

int Check(const std::vector<std::string>& files) {
  int status = 0;
  for (const std::string& name : files) {
    try {
      const ScenarioFile file = ReadScenarioFile(name);
      const Scenario scenario = ParseScenario(file.text, file.name);
      std::cout << fmt::format("{}: good, {} events\n", name, scenario.steps.size());
    } catch (const std::exception& problem) {
      rolu::SayProblem(problem.what());
      status = rolu::kWrongUse;
    }
  }
  return status;
}

int List() {
  for (const std::string& name : ReadyScenarioNames()) {
    const ScenarioFile file = ReadScenarioFile(name);
    std::cout << fmt::format("{:<18}{}\n", name, ParseScenario(file.text, file.name).description);
  }
  return 0;
}

std::string ScenarioHelp() {
  std::string text =
      "An event of a scenario has a time \"at\", or \"after\": the \"name\" of another event, an event\n"
      "of the board or the beginning of a command of the MCU; the first time counts, and a \"delay\"\n"
      "may follow. It does a verb (\"do\") or expects something (\"expect\") \"within\" a time from then.\n"
      "When an expectation fails, the program is ended and the status is 9. When all are met and no\n"
      "other event is due, it is ended with status 0.\n\n"
      "Expectations:\n";
  for (const Verb& verb : ExpectationVerbs()) text += ListItem(Synopsis(verb), verb.help);
  text +=
      "\nStatus 0 also stands for a status of the program, a power cut, a reset or a bite that was\n"
      "expected.\n"
      "Events of the board:\n  ";
  return text + fmt::format("{}.\n\n", fmt::join(BoardEventNames(), ", "));
}

}  // namespace

void AddScenariosCommand(CLI::App& app, Invocation& invocation) {
  CLI::App* const scenarios =
      NewCommand(app, "scenarios", "Lists the ready-made scenarios, or checks one of yours",
                 "rolu-sim scenarios [OPTIONS]", ScenarioHelp());
  const auto shown = std::make_shared<std::string>();
  const auto checked = std::make_shared<std::vector<std::string>>();
  scenarios->add_option("--show", *shown, "Print the text of a scenario, to start your own from")
      ->type_name("NAME");
  scenarios->add_option("--check", *checked, "Check scenarios without playing them")->type_name("FILE");
  OnRun(scenarios, invocation, [=] {
    if (!checked->empty()) return Check(*checked);
    if (shown->empty()) return List();
    std::cout << ReadScenarioFile(*shown).text;
    return 0;
  });
}

}  // namespace rolu_sim
