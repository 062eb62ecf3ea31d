#include "arcsim/Values.h"

#include "arcsim/Duration.h"
#include "support/NearestName.h"

#include "modem/Requests.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <sstream>

namespace arcsim::program {

namespace {

using std::chrono::milliseconds;

/// `judge` returns the reason for refusing a text, or an empty text; it may replace the text by the spelling that is
/// meant.
CLI::Validator validator(std::function<std::string(std::string&)> judge)
{
    return {std::move(judge), ""};
}

std::string refusal(const std::string& given, const std::string& accepted)
{
    return "'" + given + "' is not accepted; accepted: " + accepted;
}

std::optional<std::int64_t> parseWholeNumber(const std::string& text)
{
    std::int64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() && end == text.data() + text.size() ? std::optional(value) : std::nullopt;
}

std::optional<double> parseNumber(const std::string& text)
{
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    const bool isNumber = error == std::errc() && end == text.data() + text.size() && std::isfinite(value);
    return isNumber ? std::optional(value) : std::nullopt;
}

std::string shown(double value)
{
    std::ostringstream text;
    text << value;
    return text.str();
}

CLI::Validator timeOf(milliseconds shortest)
{
    return validator([shortest](std::string& given) {
        const auto time = parseDuration(given);
        return time && *time >= shortest ? "" : durationRefusal(given, shortest);
    });
}

CLI::Validator systemOf(const std::vector<std::string>& names)
{
    return validator([names](std::string& given) -> std::string {
        for (const std::string& name : names) {
            if (support::lowerCase(name) == support::lowerCase(given)) {
                given = name;
                return "";
            }
        }
        return support::unknownName("system", given, names);
    });
}

std::vector<std::string> functionNames()
{
    std::vector<std::string> names;
    for (const modem::RequestKind& kind : modem::kRequests)
        names.emplace_back(kind.name);
    return names;
}

constexpr const char* kFunctionPrefix = "ARC_";

}  // namespace

CLI::Option* addText(CLI::App& command, const std::string& name, const std::string& shownAs, std::string& value,
                     const std::string& text)
{
    return command.add_option(name, value, text)
        ->option_text(shownAs)
        ->type_name(shownAs)
        ->check(validator(
            [](std::string& given) { return given.empty() ? refusal(given, "a text that is not empty") : ""; }));
}

CLI::Option* addWord(CLI::App& command, const std::string& name, const std::string& shownAs,
                     const std::vector<std::string>& words, std::string& value, const std::string& text)
{
    const auto judge = [words](std::string& given) {
        const bool isOne = std::find(words.begin(), words.end(), given) != words.end();
        return isOne ? std::string() : refusal(given, support::joined(words));
    };
    return command.add_option(name, value, text)->option_text(shownAs)->type_name(shownAs)->check(validator(judge));
}

CLI::Option* addWholeNumber(CLI::App& command, const std::string& name, std::int64_t lowest, std::int64_t highest,
                            std::optional<std::int64_t>& value, const std::string& text)
{
    const auto judge = [lowest, highest](std::string& given) {
        const auto number = parseWholeNumber(given);
        if (number && *number >= lowest && *number <= highest)
            return std::string();
        return refusal(given, "a whole number from " + std::to_string(lowest) + " to " + std::to_string(highest));
    };
    return command
        .add_option_function<std::string>(
            name, [&value](const std::string& given) { value = parseWholeNumber(given); }, text)
        ->option_text("N")
        ->type_name("N")
        ->check(validator(judge));
}

CLI::Option* addNumber(CLI::App& command, const std::string& name, double lowest, double highest,
                       std::optional<double>& value, const std::string& text)
{
    const auto judge = [lowest, highest](std::string& given) {
        const auto number = parseNumber(given);
        if (number && *number >= lowest && *number <= highest)
            return std::string();
        return refusal(given, "a number from " + shown(lowest) + " to " + shown(highest));
    };
    return command
        .add_option_function<std::string>(
            name, [&value](const std::string& given) { value = parseNumber(given); }, text)
        ->option_text("X")
        ->type_name("X")
        ->check(validator(judge));
}

CLI::Option* addTime(CLI::App& command, const std::string& name, milliseconds shortest, const OnTime& onTime,
                     const std::string& text)
{
    return command
        .add_option_function<std::string>(
            name, [onTime](const std::string& given) { onTime(parseDuration(given).value()); }, text)
        ->option_text("TIME")
        ->type_name("TIME")
        ->check(timeOf(shortest));
}

CLI::Option* addTimeOrWord(CLI::App& command, milliseconds shortest, const std::vector<std::string>& words,
                           std::string& value, const std::string& text)
{
    const auto judge = [shortest, words](std::string& given) {
        const auto time = parseDuration(given);
        if ((time && *time >= shortest) || std::find(words.begin(), words.end(), given) != words.end())
            return std::string();
        return durationRefusal(given, shortest) + "; or: " + support::joined(words);
    };
    return command.add_option("TIME", value, text)->option_text(" ")->check(validator(judge));
}

CLI::Option* addTwoTimes(CLI::App& command, const std::string& name, const std::string& shownAs,
                         std::vector<milliseconds>& times, const std::string& text)
{
    const auto store = [&times](const std::vector<std::string>& given) {
        for (const std::string& each : given)
            times.push_back(parseDuration(each).value());
    };
    return command.add_option_function<std::vector<std::string>>(name, store, text)
        ->option_text(shownAs)
        ->type_name("TIME")
        ->expected(2)
        ->allow_extra_args(false)  // the word after the second time is an argument again
        ->check(timeOf(milliseconds(0)));
}

CLI::Option* addFunction(CLI::App& command, std::string& value, const std::string& text)
{
    const auto judge = [](std::string& given) -> std::string {
        const std::vector<std::string> names = functionNames();
        const std::string prefix = support::lowerCase(kFunctionPrefix);
        std::string wanted = support::lowerCase(given);
        if (wanted.compare(0, prefix.size(), prefix) != 0)
            wanted.insert(0, prefix);
        for (const std::string& name : names) {
            if (support::lowerCase(name) == wanted) {
                given = name;
                return "";
            }
        }
        return support::unknownName("function", given, names, wanted);
    };
    return command.add_option("FUNCTION", value, text)->option_text(" ")->transform(validator(judge));
}

CLI::Option* addSystem(CLI::App& command, const std::vector<std::string>& names, std::string& value,
                       const std::string& text)
{
    return command.add_option("SYSTEM", value, text)->option_text(" ")->transform(systemOf(names));
}

CLI::Option* addSystems(CLI::App& command, const std::vector<std::string>& names, std::vector<std::string>& values,
                        const std::string& text)
{
    return command.add_option("SYSTEM", values, text)->option_text("...")->transform(systemOf(names));
}

}  // namespace arcsim::program
