// The library from a shell. Opens the modem, makes one request or a few, and closes it: a run never leaves the modem
// open, and never takes longer than its --timeout and a few seconds for the closing.

#include "kelarcctl/Commands.h"
#include "kelarcctl/ExitCode.h"

#include <csignal>
#include <cstdio>
#include <memory>
#include <unistd.h>

namespace kelarcctl {

namespace {

int refuse(const CLI::App& app, const std::string& message)
{
    const CLI::App* command = &app;
    std::string name = "kelarcctl";
    while (!command->get_subcommands().empty()) {
        command = command->get_subcommands().front();
        name += " " + command->get_name();
    }
    std::fprintf(stderr, "%s: %s\nRun '%s --help' for more information.\n", name.c_str(), message.c_str(),
                 name.c_str());
    return kExitUsage;
}

std::string namesOf(const CLI::App& app)
{
    std::string names;
    for (const CLI::App* const command : app.get_subcommands([](const CLI::App*) { return true; }))
        names += (names.empty() ? "" : ", ") + command->get_name();
    return names;
}

/// What is wrong with the words that name a command; empty when they do.
std::string misnamed(const CLI::App& app, int argc, char** argv)
{
    const CLI::App* command = &app;
    for (int i = 1; !namesOf(*command).empty(); ++i) {
        if (i >= argc)
            return "a command is missing; accepted: " + namesOf(*command);
        const std::string given = argv[i];
        if (given.compare(0, 1, "-") == 0)
            return given == "-h" || given == "--help" || (given == "--version" && command == &app)
                       ? ""
                       : "'" + given + "' comes before the command; options come after it";
        const auto named = command->get_subcommands([&](const CLI::App* each) { return each->get_name() == given; });
        if (named.empty())
            return "unknown command '" + given + "'; accepted: " + namesOf(*command);
        command = named.front();
    }
    return "";
}

int run(const Invocation& invocation)
{
    support::Interrupt interrupt;
    const auto log = std::make_shared<Log>(invocation.log, invocation.logLevel);
    auto modem = std::make_unique<kelarc::KelArc>([log](int level, const char* text) { log->line(level, text); });
    interrupt.allow();
    Session session(*modem, interrupt, *log, invocation.timeout);
    int exitCode = kExitOk;
    try {
        session.open();
        exitCode = invocation.run(session, Output(invocation.json));
    } catch (const Failure& failure) {
        std::fprintf(stderr, "kelarcctl: %s\n", failure.what());
        exitCode = failure.exitCode();
    } catch (const std::exception& error) {  // here, for the library must not be destroyed while it repeats for ever
        std::fprintf(stderr, "kelarcctl: %s\n", error.what());
        exitCode = kExitRefused;
    }
    const bool isClosed = session.close();
    if (!Output::finish()) {
        std::fprintf(stderr, "kelarcctl: the results could not be written\n");
        exitCode = exitCode == kExitOk ? kExitRefused : exitCode;
    }
    if (!isClosed) {  // destroying the library would wait for the client library, which does not come back
        std::fflush(nullptr);
        ::_exit(exitCode);
    }
    return exitCode;
}

}  // namespace

}  // namespace kelarcctl

int main(int argc, char** argv)
{
    using namespace kelarcctl;
    std::signal(SIGPIPE, SIG_IGN);  // a reader of stdout that leaves must not keep the modem from being closed
    CLI::App app("Control of the GNSS receiver in the modem", "kelarcctl");
    app.require_subcommand(1);
    app.set_version_flag("--version", "kelarcctl 0.1");
    app.footer("Exit codes: 0 success, 2 usage, 3 the modem refused, 4 no answer in time, 130 interrupted.");
    Invocation invocation;
    addCommands(app, invocation);
    if (const std::string wrong = misnamed(app, argc, argv); !wrong.empty()) {
        std::fprintf(stderr, "kelarcctl: %s\nRun 'kelarcctl --help' for more information.\n", wrong.c_str());
        return kExitUsage;
    }
    try {
        app.parse(argc, argv);
        return run(invocation);
    } catch (const CLI::Success& wanted) {
        return app.exit(wanted);
    } catch (const CLI::ParseError& error) {
        return refuse(app, error.what());
    } catch (const std::exception& error) {
        std::fprintf(stderr, "kelarcctl: %s\n", error.what());
        return kExitRefused;
    }
}
