#include "kelarcctl/Texts.h"

#include <algorithm>
#include <set>

namespace kelarcctl {

namespace {

/// Text as it stands: nothing in it means anything to the formatter.
std::string plain(const std::string& text)
{
    std::string escaped;
    for (const char c : text) {
        if (c == '\\')
            escaped += "\\e";
        else if (c == '-')
            escaped += "\\-";
        else if (c == '\'')
            escaped += "\\(aq";
        else
            escaped += c;
    }
    return escaped.empty() || escaped.front() != '.' ? escaped : "\\&" + escaped;
}

std::string nameOf(const CLI::Option& option)
{
    return option.nonpositional() ? "--" + option.get_lnames().front() : option.get_name();
}

std::string item(const CLI::Option& option)
{
    const std::string value =
        option.nonpositional() && option.get_items_expected_max() > 0 ? option.get_option_text() : "";
    return ".TP\n\\fB" + plain(nameOf(option)) + "\\fR" + (value.empty() ? "" : " \\fI" + plain(value) + "\\fR") +
           "\n" + plain(option.get_description()) + "\n";
}

bool isOfEveryCommand(const CLI::Option& option)
{
    return option.get_group() == "Options of every command" || option.get_name() == "--help";
}

void addCommandTexts(std::string& text, const CLI::App& command, const std::string& path)
{
    for (const CLI::App* const each : command.get_subcommands([](const CLI::App*) { return true; })) {
        const std::string name = path + each->get_name();
        if (!each->get_subcommands([](const CLI::App*) { return true; }).empty()) {
            addCommandTexts(text, *each, name + " ");
            continue;
        }
        std::string usage = "\\fBkelarcctl " + plain(name) + "\\fR";
        std::string items;
        for (const CLI::Option* const option : each->get_options()) {
            if (!option->nonpositional())
                usage += option->get_required() ? " \\fI" + plain(option->get_name()) + "\\fR"
                                                : " [\\fI" + plain(option->get_name()) + "\\fR]";
            if (!isOfEveryCommand(*option))
                items += item(*option);
        }
        text += ".SS " + usage + "\n" + plain(each->get_description()) + "\n" + items;
    }
}

struct Example
{
    const char* line;
    const char* meaning;
};
// Run by a test as they stand, on a simulated modem.
constexpr Example kExamples[] = {
    {"kelarcctl status", "everything that can be read"},
    {"kelarcctl doctor --timeout 2m", "why there is no fix"},
    {"kelarcctl system glonass on", "write a setting, and read it back"},
    {"kelarcctl period --json", "read one, for a program"},
    {"kelarcctl export settings.json", "keep all settings"},
    {"kelarcctl apply settings.json --dry-run", "see what differs from them"},
    {"kelarcctl gnss start", "where the sentences come"},
    {"kelarcctl lsta enable gps --watch --for 2s", "reports on GPS for two seconds"},
    {"kelarcctl events --for 1s --json", "notifications, a line of JSON each"},
    {"kelarcctl tasks gnss stop", "what the library does meanwhile"},
};

}  // namespace

std::string manPage(const CLI::App& app, const Invocation&)
{
    std::string text =
        ".TH KELARCCTL 1 \"\" \"kelarcctl 0.1\" \"User Commands\"\n.SH NAME\nkelarcctl \\- " +
        plain(app.get_description()) +
        "\n.SH SYNOPSIS\n.B kelarcctl\n.I COMMAND\n[\\fIARGUMENT\\fR...] [\\fIOPTION\\fR...]\n"
        ".SH DESCRIPTION\nOpens the modem through the client library, makes a request or a few, and closes "
        "it. Results go to standard output, the library\\(aqs log and complaints to standard error. No "
        "command takes longer than its \\fB\\-\\-timeout\\fR and a few seconds for closing; Ctrl\\-C and "
        "SIGTERM close the modem, a second one leaves at once.\n.SH OPTIONS\nOf every command:\n";
    std::set<std::string> known;
    for (const CLI::App* const command : app.get_subcommands([](const CLI::App*) { return true; }))
        for (const CLI::Option* const option : command->get_options())
            if (isOfEveryCommand(*option) && known.insert(option->get_name()).second)
                text += item(*option);
    text += ".SH COMMANDS\n";
    addCommandTexts(text, app, "");
    text += R"(.SH EXIT STATUS
.TP
0
success
.TP
2
the command line, or a file of settings, was not understood
.TP
3
the modem refused, \fBdoctor\fR found what has failed, or a result could not be written
.TP
4
no answer within \fB\-\-timeout\fR
.TP
130
interrupted
.SH ENVIRONMENT
.TP
ARCSIM_SOCKET
with the simulated client library: where the daemon of the simulated modem serves
.SH EXAMPLES
)";
    for (const Example& example : kExamples)
        text += ".TP\n" + plain(example.line) + "\n" + plain(example.meaning) + "\n";
    return text;
}

}  // namespace kelarcctl
