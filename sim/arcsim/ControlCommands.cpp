#include "arcsim/ControlCommands.h"

#include "arcsim/Commands.h"
#include "arcsim/ControlOptions.h"
#include "arcsim/FaultCommands.h"
#include "arcsim/ModemCommands.h"
#include "arcsim/ReceptionCommands.h"
#include "arcsim/StatusText.h"

#include <memory>

namespace arcsim::program {

namespace {

constexpr const char* kDaemonGroup = "The daemon";

void addStatus(CLI::App& app, Commands& commands)
{
    const auto options = std::make_shared<ControlOptions>();
    CLI::App& command = addControl(
        app, {"status", kDaemonGroup, "Show modem, receiver, clients, calls and faults", "arcsim status --json"},
        *options);
    commands.add(command, [options] { return runControl(*options, {{"control", "status"}}, statusText); });
}

void addReset(CLI::App& app, Commands& commands)
{
    const auto options = std::make_shared<ControlOptions>();
    CLI::App& command = addControl(
        app, {"reset", kDaemonGroup, "Put the modem and its scenario back to their start", "arcsim reset"}, *options);
    commands.add(command, [options] {
        return runControl(*options, {{"control", "reset"}},
                          [](const Json&) { return "the modem is at its start; the scenario begins anew\n"; });
    });
}

void addStop(CLI::App& app, Commands& commands)
{
    const auto options = std::make_shared<ControlOptions>();
    CLI::App& command =
        addControl(app, {"stop", kDaemonGroup, "End the daemon; returns when it has ended", "arcsim stop"}, *options);
    commands.add(command, [options] {
        return runLastControl(*options, {{"control", "stop"}}, [](const Json&) { return "the daemon has ended\n"; });
    });
}

}  // namespace

void addControlCommands(CLI::App& app, Commands& commands)
{
    addStatus(app, commands);
    addReset(app, commands);
    addStop(app, commands);
    addTimedControl(
        app, commands,
        {"advance", kDaemonGroup, "Let scenario time go on, of a daemon with virtual time", "arcsim advance 20s"}, "ms",
        "By how much", "scenario time has gone on by ");
    addModemCommands(app, commands);
    addReceptionCommands(app, commands);
    addFaultCommands(app, commands);
}

}  // namespace arcsim::program
