#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <string_view>

namespace rolu {

// A man page from the definitions of a command line: name, synopsis, options, commands and exit statuses.
// What the program has beside these is written behind it, with the pieces below. `usage` gives a command's
// form.
std::string ManPage(const CLI::App& app, std::string_view version, std::string_view purpose,
                    std::string (*usage)(const CLI::App&));

// Text in which nothing is a request to the formatter.
std::string RoffText(std::string_view text);

// A term and what it is; `body` may hold requests.
std::string RoffItem(std::string_view term, std::string_view body);

}  // namespace rolu
