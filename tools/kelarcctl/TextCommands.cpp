#include "kelarcctl/Commands.h"
#include "kelarcctl/ExitCode.h"
#include "kelarcctl/Texts.h"
#include "kelarcctl/monitor/KeyRows.h"

#include <cstdio>

namespace kelarcctl {

namespace {

constexpr const char* kDescription =
    "Opens the modem through the client library, makes a request or a few, and closes it. Results go to standard "
    "output, the library's log and complaints to standard error. No command takes longer than its --timeout and a few "
    "seconds for closing. Ctrl-C, SIGTERM, SIGQUIT and SIGHUP close the modem; a second one "
    "leaves at once, but SIGHUP does not count as one of the two.";

std::vector<support::TextRow> environmentRows()
{
    return {{"ARCSIM_SOCKET", "with the simulated client library: where the daemon of the simulated modem serves"},
            {"NO_COLOR", "when it is set: no colours, as with --no-color"},
            {"TERM, LC_ALL, LC_CTYPE, LANG", "what the monitor's terminal can show"}};
}

// A test runs these examples unchanged on a simulated modem.
std::vector<support::TextRow> exampleRows()
{
    return {{"kelarcctl status", "everything that can be read"},
            {"kelarcctl doctor --timeout 2m", "why there is no fix"},
            {"kelarcctl system glonass on", "write a setting, and read it back"},
            {"kelarcctl period --json", "read one, for a program"},
            {"kelarcctl export settings.json", "keep all settings"},
            {"kelarcctl apply settings.json --dry-run", "see what differs from them"},
            {"kelarcctl gnss start", "where the sentences come"},
            {"kelarcctl lsta enable gps --watch --for 2s", "reports on GPS for two seconds"},
            {"kelarcctl events --for 1s --json", "notifications, a line of JSON each"},
            {"kelarcctl tasks gnss stop", "what the library does meanwhile"}};
}

std::string pageOf(const CLI::App& app)
{
    return support::manPage(app, {app.version(),
                                  kDescription,
                                  kEveryCommand,
                                  {{"KEYS OF MONITOR", keyRows()},
                                   {"EXIT STATUS", exitCodeRows()},
                                   {"ENVIRONMENT", environmentRows()},
                                   {"EXAMPLES", exampleRows()}}});
}

}  // namespace

std::vector<support::TextRow> exitCodeRows()
{
    std::vector<support::TextRow> rows;
    for (const ExitCodeRow& row : kExitCodes)
        rows.push_back({std::to_string(row.code), row.meaning});
    return rows;
}

void addTexts(CLI::App& app, Invocation& invocation)
{
    const auto add = [&](const std::string& name, const std::string& help, std::function<std::string()> text) {
        app.add_subcommand(name, help)->callback([text = std::move(text)] {
            std::fputs(text().c_str(), stdout);
            throw CLI::RuntimeError(kExitOk);
        });
    };
    add("completion", "Print the completion of bash: source <(kelarcctl completion)",
        [&] { return support::bashCompletion(app, invocation); });
    add("man", "Print the manual page: kelarcctl man | man -l -", [&] { return pageOf(app); });
}

}  // namespace kelarcctl
