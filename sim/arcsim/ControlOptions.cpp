#include "arcsim/ControlOptions.h"

#include "arcsim/Commands.h"
#include "arcsim/Duration.h"
#include "arcsim/ExitCode.h"
#include "arcsim/Output.h"
#include "arcsim/SocketPath.h"
#include "arcsim/Values.h"

#include <csignal>
#include <iostream>
#include <memory>

namespace arcsim::program {

namespace {

constexpr std::chrono::milliseconds kShortest{1};

enum class After
{
    leave,
    waitForEnd,
};

void requireLineThatFits(const Json& control)
{
    const std::size_t length = Json{{"id", 1}}.dump().size() + control.dump().size();
    if (length > kLongestLine)
        throw UsageError("the request would have " + std::to_string(length) + " bytes; accepted: at most " +
                         std::to_string(kLongestLine));
}

int run(const ControlOptions& options, const Json& control, After after,
        const std::function<std::string(const Json&)>& humanText)
{
    const SocketPath path = socketPath(options.socket);
    requireLineThatFits(control);
    std::signal(SIGPIPE, SIG_IGN);  // finishOutput() notices when the reader of stdout has left
    int exitCode = kExitOk;
    Json document;
    try {
        ControlClient client(path, options.timeout);
        const Json result = client.ask(control);
        if (after == After::waitForEnd)
            client.waitForEnd();
        document = Json{{"ok", true}, {"result", result}};
        if (!options.json)
            std::cout << humanText(result);
    } catch (const ControlFailure& failure) {
        exitCode = failure.exitCode();
        document = Json{{"ok", false}, {"error", failure.what()}};
        sayError(printable(failure.what()));
    }
    if (options.json)
        std::cout << asciiText(document) << '\n';
    return finishOutput(exitCode);
}

}  // namespace

CLI::App& addControl(CLI::App& app, const About& about, ControlOptions& options)
{
    CLI::App& command = *app.add_subcommand(about.name, about.text)->group(about.group);
    command.footer(std::string("Example:\n  ") + about.example);
    addText(command, "--socket", "PATH", options.socket, "Where the daemon listens")->group("Daemon");
    command.add_flag("--json", options.json, "Print the daemon's answer as one JSON document")->group("Daemon");
    addTime(
        command, "--timeout", kShortest, [&options](auto time) { options.timeout = time; },
        "Longest wait for the answer; 10s if not given")
        ->group("Daemon");
    return command;
}

void addTimedControl(CLI::App& app, Commands& commands, const About& about, const char* field, const char* timeText,
                     const char* outcome)
{
    struct Options
    {
        ControlOptions control{};
        std::chrono::milliseconds time{};
    };
    const auto options = std::make_shared<Options>();
    CLI::App& command = addControl(app, about, options->control);
    addTime(
        command, "TIME", kShortest, [options](auto time) { options->time = time; }, timeText)
        ->option_text(" ")
        ->required();
    commands.add(command, [options, name = about.name, field, outcome] {
        const Json control{{"control", name}, {field, options->time.count()}};
        return runControl(options->control, control,
                          [&](const Json&) { return outcome + durationText(options->time) + '\n'; });
    });
}

int runControl(const ControlOptions& options, const Json& control,
               const std::function<std::string(const Json&)>& humanText)
{
    return run(options, control, After::leave, humanText);
}

int runLastControl(const ControlOptions& options, const Json& control,
                   const std::function<std::string(const Json&)>& humanText)
{
    return run(options, control, After::waitForEnd, humanText);
}

}  // namespace arcsim::program
