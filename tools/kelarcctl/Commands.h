#pragma once

#include "kelarcctl/CommandLine.h"

namespace kelarcctl {

/// Gives the program its commands; parsing fills `invocation`.
void addCommands(CLI::App& app, Invocation& invocation);

/// The commands about the command line itself.
struct Program
{
    Program() { addCommands(app, invocation); }

    Invocation invocation{};
    CLI::App app{"Control of the GNSS receiver in the modem", "kelarcctl"};
};

// The families of commands, in the order of the help.
void addInformation(CLI::App& app, Invocation& invocation);
void addDoctor(CLI::App& app, Invocation& invocation);
void addSettings(CLI::App& app, Invocation& invocation);
void addKeys(CLI::App& app, Invocation& invocation);
void addFiles(CLI::App& app, Invocation& invocation);
void addGnss(CLI::App& app, Invocation& invocation);
void addLsta(CLI::App& app, Invocation& invocation);
void addEvents(CLI::App& app, Invocation& invocation);
void addPassThrough(CLI::App& app, Invocation& invocation);
void addTasks(CLI::App& app, Invocation& invocation);
void addTexts(CLI::App& app, Invocation& invocation);

}  // namespace kelarcctl
