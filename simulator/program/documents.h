#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace rolu_sim {

// Texts from the definitions of the command line and of the verbs.
std::string SimulatorManPage(const CLI::App& app);
std::string SimulatorCompletion(const CLI::App& app);

}  // namespace rolu_sim
