#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace rolu_sim {

// Texts from the definitions of the command line and of the verbs.
std::string ManPage(const CLI::App& app);
std::string BashCompletion(const CLI::App& app);

}  // namespace rolu_sim
