#include "arcsim/Texts.h"

#include "arcsim/ExitCode.h"
#include "arcsim/Output.h"
#include "support/CommandTexts.h"

#include <array>
#include <cstdio>

namespace arcsim::program {

namespace {

constexpr const char* kDescription =
    "A modem for machines that have none. serve keeps it in a daemon, which applications with the simulated client "
    "library use, several at a time; most other commands look at it, or let it fail. Times carry their unit, as 800ms, "
    "20s, 1.5s, 2m or 1h.";

std::vector<const CLI::App*> commandsOf(const CLI::App& app)
{
    return app.get_subcommands([](const CLI::App*) { return true; });
}

std::vector<support::TextRow> environmentRows()
{
    return {{"ARCSIM_SOCKET", "where the daemon serves, unless --socket says so; applications use the modem of that "
                              "daemon, and one of their own without it"},
            {"XDG_RUNTIME_DIR", "folder of the daemon's socket where neither says so: arcsim.sock in it, or else "
                                "/tmp/arcsim-UID.sock"}};
}

/// The example of each command that has one, as its help shows it.
std::vector<support::TextRow> exampleRows(const CLI::App& app)
{
    const std::string title = "Example:\n  ";
    std::vector<support::TextRow> rows;
    for (const CLI::App* const command : commandsOf(app)) {
        const std::string footer = command->get_footer();
        const std::size_t begin = footer.find(title);
        if (begin != std::string::npos)
            rows.push_back({footer.substr(begin + title.size()), command->get_description()});
    }
    return rows;
}

std::string page(const CLI::App& app)
{
    return support::manPage(
        app, {app.version(),
              kDescription,
              "",
              {{"EXIT STATUS", exitCodeRows()}, {"ENVIRONMENT", environmentRows()}, {"EXAMPLES", exampleRows(app)}}});
}

/// The completion script. An option takes a file name if its help names the value FILE, PATH or SCENARIO.
std::string completion(const CLI::App& app)
{
    constexpr std::array<const char*, 3> kFiles{"FILE", "PATH", "SCENARIO"};
    support::TypedWords typed;
    for (const CLI::App* const command : commandsOf(app))
        for (const CLI::Option* const option : command->get_options())
            for (const char* const file : kFiles)
                if (option->get_option_text() == file || option->get_type_name() == file || option->get_name() == file)
                    typed.files.push_back(option);
    return support::bashCompletion(app, typed);
}

}  // namespace

std::vector<support::TextRow> exitCodeRows()
{
    return {{std::to_string(kExitOk), "done"},
            {std::to_string(kExitOutput), "standard output could not be written"},
            {std::to_string(kExitUsage), "wrong command line"},
            {std::to_string(kExitRefused), "refused, by the daemon too; a message says why"},
            {std::to_string(kExitNoAnswer), "the daemon did not answer within --timeout, or hung up"},
            {std::to_string(kExitNoDaemon), "no daemon at the socket"},
            {std::to_string(kExitDifferent), "an application did not call as it was recorded"}};
}

void addTextCommands(CLI::App& app, Commands& commands)
{
    const auto add = [&](const std::string& name, const std::string& help, std::string (*text)(const CLI::App&)) {
        commands.add(*app.add_subcommand(name, help)->group("Texts"), [&app, text] {
            std::fputs(text(app).c_str(), stdout);
            return finishOutput(kExitOk);
        });
    };
    add("completion", "For bash: source <(arcsim completion)", completion);
    add("man", "The manual page: arcsim man | man -l -", page);
}

}  // namespace arcsim::program
