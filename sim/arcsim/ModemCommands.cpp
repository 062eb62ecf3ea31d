#include "arcsim/ModemCommands.h"

#include "arcsim/Commands.h"
#include "arcsim/ControlOptions.h"
#include "arcsim/Duration.h"
#include "arcsim/Values.h"
#include "support/NearestName.h"
#include "support/Printable.h"

#include <limits>
#include <memory>

namespace arcsim::program {

namespace {

using std::chrono::milliseconds;

constexpr const char* kModemGroup = "The modem";
constexpr std::int64_t kHighestInt = std::numeric_limits<int>::max();
constexpr std::int64_t kMostEvents = 100'000;
constexpr double kHighestLsta = 1e9;

const std::vector<std::string>& lstaSystems()
{
    static const std::vector<std::string> names{"gps", "glonass", "beidou", "galileo"};
    return names;
}

/// A text from the result, or the command line's text if the daemon does not repeat it.
std::string textOf(const Json& result, const char* key, const std::string& otherwise)
{
    return result.contains(key) && result[key].is_string() ? printable(result[key].get<std::string>())
                                                           : support::printable(otherwise);
}

struct SetOptions
{
    ControlOptions control{};
    std::string key{};
    std::string value{};
    bool force = false;
};

int set(const SetOptions& options)
{
    Json control{{"control", "set"}, {"key", charactersOf(options.key)}, {"value", charactersOf(options.value)}};
    if (options.force)
        control["force"] = true;
    return runControl(options.control, control, [&](const Json& result) {
        const std::string value = textOf(result, "value", options.value);
        const std::string before = textOf(result, "before", "not there");
        return textOf(result, "key", options.key) + ": " + value +
               (before == value ? " as before" : " (was " + before + ")") + '\n';
    });
}

void addSet(CLI::App& app, Commands& commands)
{
    const auto options = std::make_shared<SetOptions>();
    CLI::App& command = addControl(
        app, {"set", kModemGroup, "Change a setting of the modem", "arcsim set Nmea/FreqMs 200"}, options->control);
    addText(command, "KEY", " ", options->key, "Of the setting, as Power/Cpu")->required();
    command.add_option("VALUE", options->value, "The new value, without quotes")->option_text(" ")->required();
    command.add_flag("--force", options->force, "Also what the modem would refuse");
    commands.add(command, [options] { return set(*options); });
}

struct EventOptions
{
    ControlOptions control{};
    std::optional<std::int64_t> id{};
    std::string payload{};
    std::optional<std::int64_t> count{};
    std::optional<milliseconds> every{};
    bool numbered = false;
};

std::string eventText(const EventOptions& options, const Json& result)
{
    const auto sent = result.contains("sent") ? wholeNumberOf(result["sent"]) : std::nullopt;
    std::string text = "event " + std::to_string(*options.id) + ": sent " + (sent ? std::to_string(*sent) : "-") +
                       (sent == 1 ? " time" : " times");
    if (options.every)
        text += ", one every " + durationText(*options.every);
    if (options.numbered)
        return text + ", numbered from 0\n";
    const std::size_t bytes = options.payload.size() / 2;
    return text + ", " + std::to_string(bytes) + (bytes == 1 ? " byte\n" : " bytes\n");
}

int event(const EventOptions& options)
{
    const bool areDigits = options.payload.find_first_not_of("0123456789abcdefABCDEF") == std::string::npos;
    if (!areDigits || options.payload.size() % 2 != 0)
        throw UsageError("HEX: '" + options.payload + "' is not accepted; accepted: pairs of hexadecimal digits");
    if (options.numbered && !options.payload.empty())
        throw UsageError("--numbered excludes HEX: the number of the event is its payload");
    if (options.every && !options.count)
        throw UsageError("--every is the time between several events; say how many with --count");
    Json control{{"control", "event"}, {"eventId", *options.id}};
    if (!options.payload.empty())
        control["payload"] = support::lowerCase(options.payload);
    if (options.count)
        control["count"] = *options.count;
    if (options.every)
        control["everyMs"] = options.every->count();
    if (options.numbered)
        control["numbered"] = true;
    return runControl(options.control, control, [&](const Json& result) { return eventText(options, result); });
}

void addEvent(CLI::App& app, Commands& commands)
{
    const auto options = std::make_shared<EventOptions>();
    CLI::App& command = addControl(app,
                                   {"event", kModemGroup, "Send an event to the applications",
                                    "arcsim event 72 --count 1000 --every 10ms --numbered"},
                                   options->control);
    addWholeNumber(command, "ID", 0, kHighestInt, options->id, "Of the event")->option_text(" ")->required();
    command.add_option("HEX", options->payload, "Its payload in hexadecimal digits; none if not given")
        ->option_text(" ");
    addWholeNumber(command, "--count", 1, kMostEvents, options->count, "So many of them");
    addTime(
        command, "--every", milliseconds(0), [options](auto time) { options->every = time; },
        "Time from one to the next; none if not given");
    command.add_flag("--numbered", options->numbered, "The payload is the event's number, 32 bits from 0 on");
    commands.add(command, [options] { return event(*options); });
}

struct LstaOptions
{
    ControlOptions control{};
    std::string system{};
    std::optional<std::int64_t> status{};
    std::optional<double> value{};
    bool automatic = false;
};

int lsta(const LstaOptions& options)
{
    Json control{{"control", "lsta"}, {"system", options.system}};
    if (options.automatic) {
        if (options.status || options.value)
            throw UsageError("--auto excludes --status and --value: it goes back to what is received");
        control["auto"] = true;
        return runControl(options.control, control,
                          [&](const Json&) { return "LSTA of " + options.system + ": by what is received\n"; });
    }
    if (!options.status)
        throw UsageError("the status is missing; accepted: --status, or --auto for what is received");
    control["status"] = *options.status;
    if (options.value)
        control["value"] = *options.value;
    return runControl(options.control, control, [&](const Json&) {
        return "LSTA of " + options.system + ": status " + std::to_string(*options.status) + ", value " +
               Json(options.value.value_or(0)).dump() + '\n';
    });
}

void addLsta(CLI::App& app, Commands& commands)
{
    const auto options = std::make_shared<LstaOptions>();
    CLI::App& command = addControl(
        app,
        {"lsta", kModemGroup, "Say what the LSTA of a satellite system is", "arcsim lsta gps --status 1 --value 41.5"},
        options->control);
    addSystem(command, lstaSystems(), options->system, "One of " + support::joined(lstaSystems()))->required();
    addWholeNumber(command, "--status", -kHighestInt, kHighestInt, options->status,
                   "0: nothing of the system is to be heard");
    addNumber(command, "--value", -kHighestLsta, kHighestLsta, options->value, "Its value; 0 if not given");
    command.add_flag("--auto", options->automatic, "Back to what is received");
    commands.add(command, [options] { return lsta(*options); });
}

}  // namespace

void addModemCommands(CLI::App& app, Commands& commands)
{
    addSet(app, commands);
    addEvent(app, commands);
    addLsta(app, commands);
    addTimedControl(app, commands, {"outage", kModemGroup, "Take the modem away from its clients", "arcsim outage 5s"},
                    "forMs", "For how long", "clients cannot reach the modem for ");
}

}  // namespace arcsim::program
