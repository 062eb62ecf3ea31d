#include "kelarcctl/CommandLine.h"

#include "kelarcctl/ExitCode.h"

#include "support/NearestName.h"
#include "support/Words.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <cstdio>
#include <utility>

namespace kelarcctl {

namespace {

using std::chrono::milliseconds;

constexpr const char* kTimes = "a time as 500ms, 30s or 2m, from 1ms to 24h";
constexpr std::size_t kLongestMessage = 400;

std::optional<milliseconds> parseTime(const std::string& text)
{
    constexpr std::array<std::pair<const char*, double>, 4> kUnits{
        {{"ms", 1}, {"s", 1000}, {"m", 60'000}, {"h", 3'600'000}}};
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    const std::string unit(end, text.data() + text.size());
    for (const auto& [name, factor] : kUnits)
        if (error == std::errc() && support::sameLetters(unit, name) && value * factor >= 1 &&
            value * factor <= 24 * 3'600'000.0)
            return milliseconds(static_cast<long long>(value * factor));
    return std::nullopt;
}

/// The typed text, made safe for a message.
std::string inQuotes(const std::string& text)
{
    return "'" + support::repeated(text) + "'";
}

CLI::Validator judged(std::function<std::string(std::string&)> judge)
{
    return {std::move(judge), ""};
}

std::vector<std::string> namesOf(const CLI::App& app)
{
    std::vector<std::string> names;
    for (const CLI::App* const command : app.get_subcommands([](const CLI::App*) { return true; }))
        names.push_back(command->get_name());
    return names;
}

std::vector<std::string> optionsOf(const CLI::App& command)
{
    std::vector<std::string> names;
    for (const CLI::Option* const option :
         command.get_options([](const CLI::Option* each) { return each->nonpositional(); }))
        names.push_back("--" + option->get_lnames().front());
    return names;
}

bool isHelp(const std::string& word)
{
    return word == "-h" || word == "--help";
}

/// The error in the words that name a command, empty if there is none; and the command that they lead to.
std::pair<std::string, const CLI::App*> misnamed(const CLI::App& app, const std::vector<std::string>& words)
{
    const CLI::App* command = &app;
    for (std::size_t i = 0; !namesOf(*command).empty(); ++i) {
        const std::vector<std::string> names = namesOf(*command);
        if (i >= words.size())
            return {"a command is missing; accepted: " + support::joined(names), command};
        const std::string& given = words[i];
        if (given.compare(0, 1, "-") == 0) {
            const bool isItsOwn = isHelp(given) || command->get_option_no_throw(given) != nullptr;
            return {isItsOwn ? "" : inQuotes(given) + " comes before the command; options come after it", command};
        }
        const auto named = std::find_if(names.begin(), names.end(),
                                        [&](const std::string& name) { return support::sameLetters(name, given); });
        if (named == names.end())
            return {support::unknownName("command", given, names), command};
        command = command->get_subcommand(*named);
    }
    return {"", command};
}

int refuse(const CLI::App& command, const std::string& message, bool isJson)
{
    std::string name = command.get_name();
    for (const CLI::App* each = command.get_parent(); each != nullptr; each = each->get_parent())
        name.insert(0, each->get_name() + " ");
    std::fprintf(stderr, "%s: %s\nRun '%s --help' for more information.\n", name.c_str(), message.c_str(),
                 name.c_str());
    if (isJson) {
        Trouble trouble;
        trouble.kind = Trouble::Kind::usage;
        trouble.text = name + ": " + message;
        trouble.next = "Run '" + name + " --help' for more information.";
        Output(true).result({{"error", trouble.json()}}, "");
    }
    return kExitUsage;
}

const CLI::App& innermost(const CLI::App& app)
{
    const CLI::App* command = &app;
    while (!command->get_subcommands().empty())
        command = command->get_subcommands().front();
    return *command;
}

}  // namespace

CLI::App& addGroup(CLI::App& parent, const std::string& name, const std::string& help)
{
    CLI::App& group = *parent.add_subcommand(name, help);
    group.require_subcommand(1);
    return group;
}

CLI::App& addCommand(CLI::App& parent, const std::string& name, const std::string& help, Invocation& invocation)
{
    CLI::App& command = *parent.add_subcommand(name, help);
    addTime(command, "--timeout", "Give up after this time (30s)", [&](milliseconds time) {
        invocation.timeout = time;
    }).group(kEveryCommand);
    command.add_flag("--json", invocation.json, "Results as JSON")->group(kEveryCommand);
    CLI::Option& log =
        *command.add_option("--log", invocation.log, "Where the library's log goes: stderr, journal or a file")
             ->option_text("TARGET")
             ->group(kEveryCommand);
    accept(
        log,
        [](const std::string& given) -> std::optional<std::string> {
            for (const char* const word : {"stderr", "journal"})
                if (support::sameLetters(given, word))
                    return word;
            return given.empty() ? std::nullopt : std::optional(given);
        },
        "stderr, journal or the path of a file");
    invocation.words[&log] = {"stderr", "journal"};
    invocation.files.push_back(&log);
    const std::vector<std::string> levels{"info", "busy", "warning", "error"};
    CLI::Option& level =
        *command
             .add_option_function<std::string>(
                 "--log-level",
                 [&, levels](const std::string& given) {
                     invocation.logLevel =
                         static_cast<int>(std::find(levels.begin(), levels.end(), given) - levels.begin()) + 2;
                 },
                 "Lowest level that is logged: info, busy, warning or error (busy)")
             ->option_text("LEVEL")
             ->group(kEveryCommand);
    accept(level, levels, invocation);
    return command;
}

void accept(CLI::Option& option, const std::vector<std::string>& words, Invocation& invocation)
{
    invocation.words[&option] = words;
    option.transform(judged([words](std::string& given) {
        for (const std::string& word : words) {
            if (word.size() == given.size() && support::sameLetters(word, given)) {
                given = word;
                return std::string();
            }
        }
        return notAccepted(given, words);
    }));
}

void accept(CLI::Option& option, std::function<std::optional<std::string>(const std::string&)> plain,
            const std::string& accepted, const std::vector<std::string>& words)
{
    option.transform(judged([plain = std::move(plain), accepted, words](std::string& given) {
        const auto found = plain(given);
        if (!found)
            return words.empty() ? inQuotes(given) + " is not accepted; accepted: " + accepted
                                 : notAccepted(given, words);
        given = *found;
        return std::string();
    }));
}

void acceptWhole(CLI::Option& option, long long lowest, long long highest)
{
    accept(
        option,
        [lowest, highest](const std::string& given) -> std::optional<std::string> {
            long long value = 0;
            const auto [end, error] = std::from_chars(given.data(), given.data() + given.size(), value);
            if (error != std::errc() || end != given.data() + given.size() || value < lowest || value > highest)
                return std::nullopt;
            return std::to_string(value);
        },
        "a whole number from " + std::to_string(lowest) + " to " + std::to_string(highest));
}

CLI::Option& addTime(CLI::App& command, const std::string& name, const std::string& help,
                     std::function<void(milliseconds)> take)
{
    CLI::Option& option =
        *command
             .add_option_function<std::string>(
                 name, [take = std::move(take)](const std::string& given) { take(parseTime(given).value()); }, help)
             ->option_text("TIME");
    accept(
        option, [](const std::string& given) { return parseTime(given) ? std::optional(given) : std::nullopt; },
        kTimes);
    return option;
}

std::string notAccepted(const std::string& given, const std::vector<std::string>& words)
{
    // Numbers that differ in few characters are not similar.
    const bool areNumbers = std::isdigit(static_cast<unsigned char>(words.front().front())) != 0;
    const auto nearest = areNumbers ? std::nullopt : support::nearestName(given, words);
    return inQuotes(given) + " is not accepted; " + (nearest ? "did you mean " + *nearest + "? " : "") +
           "accepted: " + support::joined(words);
}

std::optional<int> parse(CLI::App& app, std::vector<std::string> words, bool isJson)
{
    isJson = isJson || std::find(words.begin(), words.end(), "--json") != words.end();
    if (words.size() > 1 && support::sameLetters(words[0], "lsta") && words[1] == "--watch")
        words.insert(words.begin() + 1, {"enable", "all"});
    if (const auto [wrong, at] = misnamed(app, words); !wrong.empty())
        return refuse(*at, wrong, isJson);
    try {
        app.parse(std::vector<std::string>(words.rbegin(), words.rend()));
        return std::nullopt;
    } catch (const CLI::Success& wanted) {
        return app.exit(wanted);
    } catch (const CLI::RuntimeError& ended) {  // the command has already printed everything
        return ended.get_exit_code();
    } catch (const CLI::ExtrasError&) {
        const CLI::App& command = innermost(app);
        for (const std::string& each : app.remaining(true))
            if (each.size() > 1 && each.front() == '-')
                return refuse(command, support::unknownName("option", each, optionsOf(command)), isJson);
        return refuse(command, "unexpected: " + inQuotes(support::joined(app.remaining(true))), isJson);
    } catch (const CLI::ParseError& error) {
        return refuse(innermost(app), support::repeated(error.what(), kLongestMessage), isJson);
    }
}

}  // namespace kelarcctl
