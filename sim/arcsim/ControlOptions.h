#pragma once

#include "arcsim/ControlClient.h"

#include <CLI/CLI.hpp>

#include <chrono>
#include <functional>
#include <string>

namespace arcsim::program {

class Commands;

/// What every control can be told.
struct ControlOptions
{
    std::string socket{};  ///< empty: by the environment, see SocketPath.h
    bool json = false;
    std::chrono::milliseconds timeout = std::chrono::seconds(10);
};

/// A command as its help shows it.
struct About
{
    const char* name;
    const char* group;
    const char* text;
    const char* example;
};

/// Adds a command with these options, which outlive the reading of the command line.
CLI::App& addControl(CLI::App& app, const About& about, ControlOptions& options);

/// Adds the whole of a control, named as its command, that takes a time in `field` and nothing else; `outcome` and the
/// time are what to say when it is done.
void addTimedControl(CLI::App& app, Commands& commands, const About& about, const char* field, const char* timeText,
                     const char* outcome);

/// Asks the daemon and prints what it says: `humanText` of the result, or its answer as one JSON document. Returns the
/// exit code; throws UsageError when the request cannot be sent.
int runControl(const ControlOptions& options, const Json& control,
               const std::function<std::string(const Json& result)>& humanText);

/// The same for the control after which the daemon ends: waits until it has.
int runLastControl(const ControlOptions& options, const Json& control,
                   const std::function<std::string(const Json& result)>& humanText);

}  // namespace arcsim::program
