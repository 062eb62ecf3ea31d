#pragma once

#include "kelarcctl/CommandLine.h"

#include <string>

namespace kelarcctl {

// Made of the same table of commands as the help.
std::string manPage(const CLI::App& app, const Invocation& invocation);
std::string bashCompletion(const CLI::App& app, const Invocation& invocation);

}  // namespace kelarcctl
