#pragma once

#include "arcsim/ControlClient.h"

#include <CLI/CLI.hpp>

#include <chrono>
#include <functional>
#include <string>

namespace arcsim::program {

class Commands;

/// The options of every control.
struct ControlOptions
{
    std::string socket{};  ///< empty: taken from the environment, see SocketPath.h
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

/// Adds a command with these options, which must outlive the reading of the command line.
CLI::App& addControl(CLI::App& app, const About& about, ControlOptions& options);

/// Adds a complete command for the control of the same name, whose only argument is a time, sent as `field`. On success
/// it prints `outcome` and the time.
void addTimedControl(CLI::App& app, Commands& commands, const About& about, const char* field, const char* timeText,
                     const char* outcome);

/// Asks the daemon and prints its answer: `humanText` of the result, or the answer as one JSON document. Returns the
/// exit code; throws UsageError when the request cannot be sent.
int runControl(const ControlOptions& options, const Json& control,
               const std::function<std::string(const Json& result)>& humanText);

/// The same for the control that ends the daemon: also waits until the daemon has ended.
int runLastControl(const ControlOptions& options, const Json& control,
                   const std::function<std::string(const Json& result)>& humanText);

}  // namespace arcsim::program
