#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <utility>
#include <vector>

namespace rolu_sim {

// The help of one subcommand, or of the whole program, with a usage line of its own.
class HelpText : public CLI::Formatter {
 public:
  explicit HelpText(std::string usage) : usage_(std::move(usage)) { column_width(26); }

  const std::string& usage() const { return usage_; }

  std::string make_usage(const CLI::App* /*app*/, std::string /*name*/) const override {
    return "Usage: " + usage_ + "\n";
  }

 private:
  const std::string usage_;
};

// "--help", "--json" and so on.
inline std::vector<std::string> LongOptions(const CLI::App& app) {
  std::vector<std::string> names;
  for (const CLI::Option* const option : app.get_options()) {
    for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
  }
  return names;
}

// Of an app whose formatter is a HelpText.
inline const std::string& UsageOf(const CLI::App& app) {
  return dynamic_cast<const HelpText&>(*app.get_formatter()).usage();
}

}  // namespace rolu_sim
