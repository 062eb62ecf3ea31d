#pragma once

#include "kelarcctl/Output.h"
#include "kelarcctl/Session.h"

#include <CLI/CLI.hpp>

#include <chrono>
#include <functional>
#include <string>

namespace kelarcctl {

/// What every command knows, and what the given one does.
struct Invocation
{
    std::chrono::milliseconds timeout{30000};
    bool json = false;
    std::string log = "stderr";
    int logLevel = 3;
    /// On an opened modem. Throws Failure; what is returned is the exit code.
    std::function<int(Session&, const Output&)> run{};
};

/// Gives the program its commands; parsing fills `invocation`.
void addCommands(CLI::App& app, Invocation& invocation);

}  // namespace kelarcctl
