#include "navigator/Options.h"

#include "kelarc/logsink.h"
#include "navigator/ExitCode.h"

#include <CLI/CLI.hpp>

#include <cstdlib>
#include <iostream>
#include <string>
#include <unistd.h>

namespace navigator {
namespace {

constexpr const char* kDescription =
    "Shows where the receiver in the modem is: configures it, starts its output and prints a line a second.\n"
    "Results go to stdout; the modem library's log, with all retries, goes to stderr.";

constexpr const char* kFooter =
    "Ctrl-C, SIGTERM, SIGQUIT or SIGHUP stops the receiver, closes the modem and prints the summary; a second one\n"
    "leaves at once; SIGHUP does not count as one of the two.\n"
    "\n"
    "Exit codes:\n"
    "  0    the output ended as asked for, by --seconds or by a signal\n"
    "  1    the modem refused a request; a message names it and the result code\n"
    "  2    wrong command line\n"
    "  3    the receiver's output could not be read, or ended\n"
    "  4    a request had no answer within --timeout\n"
    "  5    results or log could not be written; a reader of a pipe that leaves is no error\n"
    "  130  a signal came before the output began, or a second one did\n";

constexpr long kLongestS = 7 * 24 * 3600;

void handToSimulator(const char* variable, const std::string& file)
{
    if (!file.empty())
        ::setenv(variable, file.c_str(), 1);
}

/// An option that only switches something off.
void addSwitch(CLI::App& app, const char* name, bool& value, const char* text)
{
    app.add_flag_callback(
        name, [&value] { value = false; }, text);
}

CLI::Validator existingFile()
{
    CLI::Validator validator = CLI::ExistingFile;
    return validator.description("");
}

bool wantsColor(const std::string& choice)
{
    if (choice != "auto")
        return choice == "always";
    return ::isatty(STDOUT_FILENO) == 1 && std::getenv("NO_COLOR") == nullptr;
}

}  // namespace

std::optional<Options> readOptions(int argc, char** argv, int& exitCode)
{
    Options options;
    long seconds = 0;
    long timeout = options.timeout.count();
    std::string color = "auto";
    std::string replay;
    std::string scenario;

    CLI::App app(kDescription, "navigator");
    app.footer(kFooter);
    app.get_formatter()->column_width(32);
    app.failure_message([](const CLI::App*, const CLI::Error& error) {
        return kelarc::logsink::printable(error.what()) + "\nRun with --help for more information.\n";
    });
    app.add_option("--seconds", seconds, "End after so much output; without it at Ctrl-C")
        ->check(CLI::Range(1L, kLongestS, "1 to " + std::to_string(kLongestS)))
        ->type_name("S");
    app.add_option("--timeout", timeout, "Longest wait for the answer to one request and for a device with output")
        ->check(CLI::Range(1L, kLongestS, "1 to " + std::to_string(kLongestS)))
        ->type_name("S")
        ->capture_default_str();
    app.add_option("--period", options.periodMs, "Period of the output")
        ->check(CLI::IsMember({"1000", "500", "200", "100"}))
        ->type_name("MS")
        ->capture_default_str();
    app.add_option("--min-elevation", options.minElevationDeg, "Lowest elevation of satellites used")
        ->check(CLI::Range(5, 45, "5 to 45"))
        ->type_name("DEGREES")
        ->capture_default_str();
    addSwitch(app, "--no-glonass", options.glonass, "Do without GLONASS (GPS is always used)");
    addSwitch(app, "--no-galileo", options.galileo, "Do without Galileo");
    addSwitch(app, "--no-beidou", options.beidou, "Do without BeiDou");
    addSwitch(app, "--no-qzss", options.qzss, "Do without QZSS");
    addSwitch(app, "--no-sbas", options.sbas, "Do without SBAS corrections");
    app.add_option("--color", color, "Colours on stdout; auto: on a terminal")
        ->check(CLI::IsMember({"auto", "always", "never"}))
        ->type_name("WHEN")
        ->capture_default_str();
    app.add_option("--replay", replay, "For the simulated modem: a recording of NMEA 0183 sentences to put out")
        ->check(existingFile())
        ->type_name("FILE");
    app.add_option("--scenario", scenario, "For the simulated modem: what it does when, and which calls fail")
        ->check(existingFile())
        ->type_name("FILE");
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        exitCode = app.exit(error) != 0 ? kExitUsage : std::cout.flush() ? kExitOk : kExitOutput;
        return std::nullopt;
    }

    if (seconds > 0)
        options.duration = std::chrono::seconds(seconds);
    options.timeout = std::chrono::seconds(timeout);
    options.color = wantsColor(color);
    handToSimulator("ARCSIM_REPLAY", replay);
    handToSimulator("ARCSIM_SCENARIO", scenario);
    return options;
}

}  // namespace navigator
