#include "arcsim/ServeCommands.h"

#include "arcsim/ExitCode.h"
#include "arcsim/Guarded.h"
#include "arcsim/Output.h"
#include "arcsim/PlayScenario.h"
#include "arcsim/RunWith.h"
#include "arcsim/Serving.h"
#include "arcsim/SocketPath.h"
#include "arcsim/TemporaryFolder.h"
#include "arcsim/Values.h"
#include "scenario/ScenarioFile.h"
#include "support/Printable.h"

#include <cstdio>
#include <memory>

namespace arcsim::program {

namespace {

void addModemOptions(CLI::App& command, ServeOptions& options)
{
    addText(command, "--scenario", "FILE", options.scenario, "Scenario file; else ARCSIM_SCENARIO");
    addText(command, "--nmea", "FILE", options.recording, "Recorded sentences to put out; else ARCSIM_REPLAY");
    addWord(command, "--time", "KIND", {"real", "virtual"}, options.time,
            "real or virtual; else ARCSIM_TIME, else real");
    command.add_flag("-v,--verbose", options.tellsCalls, "Print every call and its answer on stderr");
}

void addServe(CLI::App& app, Commands& commands)
{
    struct Given
    {
        ServeOptions options{};
        std::string socket{};
    };
    CLI::App& command = *app.add_subcommand("serve", "Serve the simulated modem until it is stopped");
    command.group("The simulated modem");
    const auto given = std::make_shared<Given>();
    addText(command, "--socket", "PATH", given->socket, "Where to serve");
    addModemOptions(command, given->options);
    command.add_flag("--fresh", given->options.fresh,
                     "Discard the state that a killed daemon left;\nstart from factory settings");
    command.footer("Example:\n  arcsim serve --scenario scenarios/demo.json --socket modem.sock");
    commands.add(command, [given] {
        const std::string path = socketPath(given->socket).path;
        return guarded([&] {
            serve(given->options, path, [&](const ModemService& modem) {
                std::printf("%s the simulated modem at %s, its sentences at %s\n",
                            modem.isContinued() ? "Serving again" : "Serving", support::printable(path).c_str(),
                            support::printable(modem.outputName()).c_str());
                std::fflush(stdout);
            });
            return finishOutput(kExitOk);
        });
    });
}

void addRun(CLI::App& app, Commands& commands)
{
    struct Given
    {
        ServeOptions options{};
        std::vector<std::string> command{};
    };
    CLI::App& command = *app.add_subcommand("run", "Run a program on a simulated modem of its own");
    command.group("The simulated modem");
    const auto given = std::make_shared<Given>();
    addModemOptions(command, given->options);
    command.add_option("PROGRAM", given->command, "It and its arguments, after --")->option_text(" ")->required();
    command.footer("The exit code is the program's.\n"
                   "\n"
                   "Example:\n"
                   "  arcsim run --scenario scenarios/demo.json -- navigator --seconds 20");
    commands.add(command, [given] {
        return guarded([&] {
            asio::io_context context(1);
            EndSignals signals(context);  // before anything is created that must be cleaned up
            const TemporaryFolder folder;
            const std::string path = folder.path() + "/modem.sock";
            LineServer server(context, path);
            given->options.keepsMemory = false;
            ModemService modem(context, serviceOptions(given->options, path));
            server.start(modem);
            return runWith(context, signals, path, given->command);
        });
    });
}

void addPlay(CLI::App& app, Commands& commands)
{
    struct Given
    {
        std::string scenario{};
        std::chrono::milliseconds duration{};
    };
    CLI::App& command = *app.add_subcommand("play", "Print what a scenario puts out, in virtual time");
    command.group("The simulated modem");
    const auto given = std::make_shared<Given>();
    addText(command, "SCENARIO", " ", given->scenario, "A file; else the modem is as from the factory");
    addTime(
        command, "--for", std::chrono::milliseconds(1), [given](auto time) { given->duration = time; },
        "How much of the scenario")
        ->required();
    command.footer("Sentences go to stdout, failed calls and events to stderr. The same scenario\n"
                   "prints the same bytes.\n"
                   "\n"
                   "Example:\n"
                   "  arcsim play scenarios/demo.json --for 1h > hour.nmea");
    commands.add(command, [given] {
        return guarded([&] {
            playScenario(given->scenario, given->duration);
            return finishOutput(kExitOk);
        });
    });
}

void addCheck(CLI::App& app, Commands& commands)
{
    CLI::App& command = *app.add_subcommand("check", "Check scenario files");
    command.group("The simulated modem");
    const auto files = std::make_shared<std::vector<std::string>>();
    command.add_option("FILE", *files, "One or more")->option_text(" ")->required();
    command.footer("Example:\n  arcsim check scenarios/demo.json");
    commands.add(command, [files] {
        int exitCode = kExitOk;
        for (const std::string& file : *files) {
            const int one = guarded([&] {
                ModemHost host(scenarioOf(file, ""), ScenarioClock::Mode::virtualTime);
                std::printf("%s: accepted\n", support::printable(file).c_str());
                return kExitOk;
            });
            exitCode = std::max(exitCode, one);
        }
        return finishOutput(exitCode);
    });
}

}  // namespace

void addServeCommands(CLI::App& app, Commands& commands)
{
    addServe(app, commands);
    addRun(app, commands);
    addPlay(app, commands);
    addCheck(app, commands);
}

}  // namespace arcsim::program
