#include "simulator/program/control_words.h"

#include <fmt/format.h>

#include <algorithm>

#include "cli/nearest_name.h"
#include "simulator/control/readings.h"

namespace rolu_sim {
namespace {

std::vector<std::string> ReadingNames() {
  std::vector<std::string> names;
  for (const Reading& reading : Readings()) names.push_back(reading.name);
  return names;
}

void AppendLine(std::string& text, const std::string& left, const std::string& right) {
  constexpr std::size_t kColumn = 26;
  if (left.size() < kColumn) {
    text += fmt::format("  {:<{}}{}\n", left, kColumn, right);
  } else {
    text += fmt::format("  {}\n  {:<{}}{}\n", left, "", kColumn, right);
  }
}

}  // namespace

const std::vector<Verb>& ControlWords() {
  constexpr char kReading[] = "Reading";
  constexpr char kBoard[] = "Board";
  static const std::vector<Verb> words = {
      {"get",
       kReading,
       "Prints some readings",
       {Choice("name", ReadingNames(), "what is to be read")},
       nullptr},
      {"show",
       kReading,
       "Prints all readings but the long lists (i2c-registers, i2c-transfers, commands)",
       {},
       nullptr},
      {"wait",
       kReading,
       "Waits until the trace has a line that begins with a text, or an event or words with the text in them",
       {Text("text", "the text"), Optional(Duration("timeout", "for how long"), "30s"),
        Optional(Integer("times", 1, 1000000, "for how many of them, from the board's start"), 1)},
       nullptr},
      {"play",
       kBoard,
       "Plays a scenario from now on, in place of the one that is being played",
       {Text("scenario", "a file, or the name of a ready-made one")},
       nullptr},
      {"stop", kBoard, "Takes the board down", {}, nullptr},
  };
  return words;
}

std::vector<Verb> AllWords() {
  std::vector<Verb> all = ControlWords();
  all.insert(all.end(), Verbs().begin(), Verbs().end());
  return all;
}

const Verb& ControlWord(std::string_view name) {
  return *std::find_if(ControlWords().begin(), ControlWords().end(),
                       [&](const Verb& word) { return word.name == name; });
}

std::string UnknownWord(std::string_view word) {
  std::vector<std::string> names;
  for (const Verb& verb : AllWords()) names.push_back(verb.name);
  return fmt::format("there is no verb \"{}\"{}", word, rolu::Suggestion(word, names));
}

std::string ControlHelp() {
  std::string text;
  std::string subject;
  for (const Verb& verb : AllWords()) {
    if (verb.subject != subject) {
      subject = verb.subject;
      text += fmt::format("{}{}:\n", text.empty() ? "" : "\n", subject);
    }
    AppendLine(text, Synopsis(verb), verb.help);
  }
  text += "\nReadings:\n";
  for (const Reading& reading : Readings()) AppendLine(text, reading.name, reading.help);
  return text;
}

}  // namespace rolu_sim
