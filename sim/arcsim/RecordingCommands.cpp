#include "arcsim/RecordingCommands.h"

#include "arcsim/Convert.h"
#include "arcsim/ExitCode.h"
#include "arcsim/Guarded.h"
#include "arcsim/Json.h"
#include "arcsim/LineServer.h"
#include "arcsim/Output.h"
#include "arcsim/ReplayService.h"
#include "arcsim/RunWith.h"
#include "arcsim/SocketPath.h"
#include "arcsim/TemporaryFolder.h"
#include "arcsim/Values.h"
#include "scenario/ScenarioFile.h"
#include "support/Files.h"
#include "support/Printable.h"

#include <cstdio>
#include <memory>
#include <optional>

namespace arcsim::program {

namespace {

struct ReplayOptions
{
    std::string file{};
    std::string nmea{};
    std::string socket{};
    bool fast = false;
    bool json = false;
    std::vector<std::string> command{};
};

int report(ReplayService& replay, const ReplayOptions& options, int exitCode)
{
    const std::optional<ReplayBook::Difference> difference = replay.book().finish();
    if (options.json) {
        Json result = {{"answered", replay.answered()}, {"recorded", replay.book().recording().calls.size()}};
        result["difference"] =
            difference ? Json{{"call", difference->call}, {"expected", difference->expected}, {"got", difference->got}}
                       : Json(nullptr);
        std::printf("%s\n", asciiText(result).c_str());
    } else if (difference) {
        std::printf("%s\n", support::printable(textOf(difference)).c_str());
    } else {
        std::printf("no difference: %u calls answered as recorded\n", replay.answered());
    }
    return finishOutput(difference ? kExitDifferent : exitCode);
}

int replayFor(const ReplayOptions& options)
{
    asio::io_context context(1);
    EndSignals signals(context);  // before anything is created that must be cleaned up
    ReplayService::Options service;
    service.fast = options.fast;
    service.receiver = scenarioOf("", options.nmea).receiver;
    const bool hasCommand = !options.command.empty();
    std::optional<TemporaryFolder> folder;
    const std::string path = hasCommand ? folder.emplace().path() + "/modem.sock" : socketPath(options.socket).path;
    Recording recording = readRecording(options.file);
    LineServer server(context, path);
    if (!hasCommand)
        service.onStop = [&] { server.whenSent([&] { context.stop(); }); };
    ReplayService replay(context, std::move(recording), std::move(service));
    server.start(replay);
    if (hasCommand)
        return report(replay, options, runWith(context, signals, path, options.command));
    signals.handle([&](int) { context.stop(); });
    std::fprintf(stderr, "Replaying %s at %s\n", support::printable(options.file).c_str(),
                 support::printable(path).c_str());
    context.run();
    return report(replay, options, kExitOk);
}

void addReplay(CLI::App& app, Commands& commands)
{
    CLI::App& command = *app.add_subcommand("replay", "Answer as recorded; tell the first call that differs");
    command.group("Recordings");
    const auto options = std::make_shared<ReplayOptions>();
    addText(command, "FILE", " ", options->file, "What libArcRecord.so has written")->required();
    addText(command, "--socket", "PATH", options->socket, "Where to serve, if there is no program");
    addText(command, "--nmea", "FILE", options->nmea, "Recorded sentences for the raw output");
    command.add_flag("--fast", options->fast, "Without the recorded times");
    command.add_flag("--json", options->json, "Print the result as one JSON document in the last line");
    command.add_option("PROGRAM", options->command, "It and its arguments, after --")->option_text(" ");
    command.footer("Without a program it serves until one has made all recorded calls and left.\n"
                   "The exit code is 6 when a call differs, otherwise the program's.\n"
                   "\n"
                   "Example:\n"
                   "  arcsim replay fault.jsonl -- navigator --seconds 10");
    commands.add(command, [options] { return guarded([&] { return replayFor(*options); }); });
}

void addConvert(CLI::App& app, Commands& commands)
{
    CLI::App& command = *app.add_subcommand("convert", "Turn a recording into a scenario that can be edited");
    command.group("Recordings");
    struct Given
    {
        std::string file{};
        std::string output{};
    };
    const auto given = std::make_shared<Given>();
    addText(command, "FILE", " ", given->file, "What libArcRecord.so has written")->required();
    addText(command, "-o,--output", "FILE", given->output, "Where to; else standard output");
    command.footer("Example:\n  arcsim convert fault.jsonl -o fault.json");
    commands.add(command, [given] {
        return guarded([&] {
            const Converted converted = convert(readRecording(given->file));
            for (const std::string& each : converted.leftOut)
                sayError(given->file + ": " + each);
            const std::string text = converted.scenario.dump(4) + '\n';
            if (given->output.empty() || support::isStandardOutput(given->output)) {
                std::fputs(text.c_str(), stdout);
                return finishOutput(kExitOk);
            }
            support::writeOutput(given->output, text, "the name of a file, or - for standard output");
            return kExitOk;
        });
    });
}

}  // namespace

void addRecordingCommands(CLI::App& app, Commands& commands)
{
    addReplay(app, commands);
    addConvert(app, commands);
}

}  // namespace arcsim::program
