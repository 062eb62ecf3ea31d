#include "arcsim/Commands.h"

#include "arcsim/ExitCode.h"
#include "arcsim/Output.h"
#include "arcsim/Texts.h"
#include "support/CommandTexts.h"
#include "support/NearestName.h"

#include <algorithm>
#include <iostream>

namespace arcsim::program {

namespace {

constexpr const char* kDescription = "The simulated modem, as a daemon that applications and this program talk to.";

constexpr const char* kFooter = "arcsim COMMAND --help shows the options of a command and an example.\n"
                                "TIME is a number with its unit: 800ms, 20s, 1.5s, 2m, 1h.\n"
                                "The daemon is found at --socket, or else at ARCSIM_SOCKET of the environment, or\n"
                                "else at $XDG_RUNTIME_DIR/arcsim.sock, or else at /tmp/arcsim-UID.sock.\n"
                                "\n";

constexpr const char* kOfPrograms = "\nrun and replay with a program otherwise end with the program's exit code.";

std::vector<std::string> commandNames(const CLI::App& app)
{
    std::vector<std::string> names;
    for (const CLI::App* const command : app.get_subcommands([](const CLI::App*) { return true; }))
        names.push_back(command->get_name());
    return names;
}

/// Checked first, because the parser would take an unknown command for a stray value and complain about the options
/// after it.
void requireCommand(const CLI::App& app, int argc, char** argv)
{
    if (argc < 2)
        throw UsageError("a command is missing; accepted: " + support::joined(commandNames(app)));
    const std::string first = argv[1];
    if (first == "-h" || first == "--help" || first == "--version")
        return;
    if (!first.empty() && first.front() == '-')
        throw UsageError("'" + first + "' comes before the command; options come after it: arcsim COMMAND --option");
    const std::vector<std::string> names = commandNames(app);
    if (std::find(names.begin(), names.end(), first) == names.end())
        throw UsageError(support::unknownName("command", first, names));
}

/// The command that was given, if any.
std::string commandPrefix(const CLI::App& app)
{
    const std::vector<CLI::App*> given = app.get_subcommands();
    return given.empty() ? "" : given.back()->get_name() + ' ';
}

int refuseUsage(const CLI::App& app, const std::string& text)
{
    const std::string prefix = commandPrefix(app);
    sayError((prefix.empty() ? "" : prefix.substr(0, prefix.size() - 1) + ": ") + text);
    std::cerr << "Run 'arcsim " << prefix << "--help' for more information.\n";
    return kExitUsage;
}

}  // namespace

void Commands::add(CLI::App& command, Run run)
{
    command.callback([this, run = std::move(run)] { m_chosen = run; });
}

int Commands::run() const
{
    if (!m_chosen)
        throw UsageError("a command is missing");
    return m_chosen();
}

int runProgram(int argc, char** argv, const std::vector<void (*)(CLI::App&, Commands&)>& addFamilies)
{
    CLI::App app(kDescription, "arcsim");
    Commands commands;
    app.set_version_flag("--version", std::string("arcsim ") + kVersion, "Print the version and exit");
    app.set_help_flag("-h,--help", "Print this help and exit");
    app.get_formatter()->column_width(26);
    app.get_formatter()->label("SUBCOMMAND", "COMMAND");
    app.require_subcommand(0, 1);  // one at most: a later word is never taken for a second command
    for (const auto& addFamily : addFamilies)
        addFamily(app, commands);
    app.footer(kFooter + support::helpTable("Exit codes", exitCodeRows()) + kOfPrograms);
    try {
        requireCommand(app, argc, argv);
        app.parse(argc, argv);
        return commands.run();
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() != 0)
            return refuseUsage(app, error.what());
        app.exit(error);
        return finishOutput(kExitOk);
    } catch (const UsageError& error) {
        return refuseUsage(app, error.what());
    }
}

}  // namespace arcsim::program
