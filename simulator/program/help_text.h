#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <utility>

#include "cli/exit_status.h"

namespace rolu_sim {

// The help of one subcommand, or of the whole program: with a usage line of its own and the exit statuses.
class HelpText : public CLI::Formatter {
 public:
  explicit HelpText(std::string usage, std::string footer = {})
      : usage_(std::move(usage)), footer_(std::move(footer)) {
    column_width(26);
  }

  const std::string& usage() const { return usage_; }

  std::string make_usage(const CLI::App* /*app*/, std::string /*name*/) const override {
    return "Usage: " + usage_ + "\n";
  }
  std::string make_footer(const CLI::App* /*app*/) const override {
    return footer_ + rolu::ExitStatusHelp() + "run and join give the program's own status.\n";
  }

 private:
  const std::string usage_;
  const std::string footer_;
};

// Of an app whose formatter is a HelpText.
inline std::string UsageOf(const CLI::App& app) {
  return dynamic_cast<const HelpText&>(*app.get_formatter()).usage();
}

}  // namespace rolu_sim
