#include "arcsim/FaultCommands.h"

#include "arcsim/Commands.h"
#include "arcsim/ControlOptions.h"
#include "arcsim/Duration.h"
#include "arcsim/FaultText.h"
#include "arcsim/Values.h"

#include <limits>
#include <memory>

namespace arcsim::program {

namespace {

using std::chrono::milliseconds;

constexpr const char* kFaultGroup = "What goes wrong";
constexpr std::int64_t kHighestInt = std::numeric_limits<int>::max();
constexpr std::int64_t kLongestReply = 4096;

/// Which calls a fault applies to.
struct When
{
    std::optional<std::int64_t> times{};
    std::optional<std::int64_t> nth{};
    bool forEver = false;
};

struct FaultOptions
{
    ControlOptions control{};
    std::string function{};
    When when{};
    std::optional<std::int64_t> code{};
    std::optional<std::int64_t> indicator{};
    std::optional<std::int64_t> replyLength{};
    bool noQuotes = false;
    std::string time{};
    std::vector<milliseconds> between{};
    std::vector<milliseconds> normal{};
};

enum class Unsaid
{
    nextCall,
    everyCall,
};

void addWhen(CLI::App& command, When& when, Unsaid unsaid)
{
    const std::string byDefault = "; the default";
    addWholeNumber(command, "--times", 1, kHighestInt, when.times,
                   "The next N calls" + (unsaid == Unsaid::nextCall ? "; 1 by default" : std::string()));
    addWholeNumber(command, "--nth", 1, kHighestInt, when.nth, "Only call N from now, 1 is the next one");
    command.add_flag("--forever", when.forEver,
                     "Every call until 'arcsim clear'" + (unsaid == Unsaid::everyCall ? byDefault : std::string()));
}

void requireOneWhen(const When& when)
{
    if ((when.times ? 1 : 0) + (when.nth ? 1 : 0) + (when.forEver ? 1 : 0) > 1)
        throw UsageError("--times, --nth and --forever exclude each other; accepted: one of them");
}

void addWhenTo(Json& fault, const When& when, Unsaid unsaid)
{
    requireOneWhen(when);
    if (when.nth)
        fault["call"] = *when.nth;
    else if (when.times)
        fault["times"] = *when.times;
    else if (!when.forEver && unsaid == Unsaid::nextCall)
        fault["times"] = 1;
}

Json faultOf(const FaultOptions& options)
{
    return {{"control", "fault"}, {"function", options.function}};
}

int inject(const ControlOptions& options, const Json& fault)
{
    return runControl(options, fault, [&](const Json&) { return faultText(fault, CallNumber::fromNow) + '\n'; });
}

/// A number from a result, with its noun: "1 call", "2 calls".
std::string countText(const Json& result, const char* key, const std::string& thing)
{
    const auto count = result.contains(key) ? wholeNumberOf(result[key]) : std::nullopt;
    return (count ? std::to_string(*count) : "-") + ' ' + thing + (count == 1 ? "" : "s");
}

int clear(const ControlOptions& options, const std::string& function)
{
    Json control{{"control", "clear"}};
    if (!function.empty())
        control["function"] = function;
    return runControl(options, control, [&](const Json& result) {
        return (function.empty() ? "" : function + ": ") + countText(result, "dropped", "injected fault") +
               " dropped, " + countText(result, "released", "hanging call") + " released\n";
    });
}

int fail(const FaultOptions& options)
{
    const bool distorts = options.indicator || options.replyLength || options.noQuotes;
    if (options.code && distorts)
        throw UsageError(
            "--code excludes --indicator, --reply-length and --no-quotes: a call that fails reports nothing");
    if (options.code && *options.code == 0)
        throw UsageError("--code: '0' is not accepted; accepted: a result code other than 0, which is success");
    if (!options.code && !distorts)
        throw UsageError("what goes wrong is missing; accepted: --code, --indicator, --reply-length, --no-quotes");
    Json fault = faultOf(options);
    if (options.code)
        fault["code"] = *options.code;
    if (options.indicator)
        fault["indicator"] = *options.indicator;
    if (options.replyLength)
        fault["replyLength"] = *options.replyLength;
    if (options.noQuotes)
        fault["quotes"] = false;
    addWhenTo(fault, options.when, Unsaid::nextCall);
    return inject(options.control, fault);
}

int hang(const FaultOptions& options)
{
    Json fault = faultOf(options);
    fault["hang"] = true;
    addWhenTo(fault, options.when, Unsaid::nextCall);
    return inject(options.control, fault);
}

Json latencyOf(const FaultOptions& options)
{
    if (!options.between.empty()) {
        if (options.between[0] > options.between[1])
            throw UsageError("--between: " + durationText(options.between[0]) + " is longer than " +
                             durationText(options.between[1]) + "; accepted: the shorter time first");
        return {{"min", options.between[0].count()}, {"max", options.between[1].count()}};
    }
    if (!options.normal.empty())
        return {{"mean", options.normal[0].count()}, {"deviation", options.normal[1].count()}};
    return parseDuration(options.time).value().count();
}

int delay(const FaultOptions& options)
{
    const int given =
        (options.time.empty() ? 0 : 1) + (options.between.empty() ? 0 : 1) + (options.normal.empty() ? 0 : 1);
    if (given != 1)
        throw UsageError(std::string(given == 0 ? "how long is missing" : "how long is said more than once") +
                         "; accepted: one of TIME, --between, --normal, or the word off");
    if (options.time == "off") {
        if (options.when.times || options.when.nth || options.when.forEver)
            throw UsageError("off excludes --times, --nth and --forever");
        return clear(options.control, options.function);
    }
    Json fault = faultOf(options);
    fault["latencyMs"] = latencyOf(options);
    addWhenTo(fault, options.when, Unsaid::everyCall);
    return inject(options.control, fault);
}

void addFail(CLI::App& app, Commands& commands)
{
    const auto options = std::make_shared<FaultOptions>();
    CLI::App& command = addControl(
        app, {"fail", kFaultGroup, "Make calls fail or report nonsense", "arcsim fail ARC_StopGNSS --code 2 --times 3"},
        options->control);
    addFunction(command, options->function, "Whose calls, as ARC_StopGNSS or stopgnss")->required();
    addWholeNumber(command, "--code", -kHighestInt, kHighestInt, options->code,
                   "They answer this result code; the modem is not asked");
    addWholeNumber(command, "--indicator", -kHighestInt, kHighestInt, options->indicator,
                   "They report this LSTA indicator");
    addWholeNumber(command, "--reply-length", 1, kLongestReply, options->replyLength,
                   "They return texts padded to N characters");
    command.add_flag("--no-quotes", options->noQuotes, "They return texts without their quotes");
    addWhen(command, options->when, Unsaid::nextCall);
    commands.add(command, [options] { return fail(*options); });
}

void addDelay(CLI::App& app, Commands& commands)
{
    const auto options = std::make_shared<FaultOptions>();
    CLI::App& command = addControl(
        app, {"delay", kFaultGroup, "Make calls take as long as given", "arcsim delay ARC_Open --between 5ms 30ms"},
        options->control);
    addFunction(command, options->function, "Whose calls, as ARC_StopGNSS or stopgnss")->required();
    addTimeOrWord(command, milliseconds(0), {"off"}, options->time,
                  "How long each takes; off: as 'arcsim clear FUNCTION'");
    addTwoTimes(command, "--between", "MIN MAX", options->between, "Evenly spread between two times");
    addTwoTimes(command, "--normal", "MEAN DEVIATION", options->normal, "Normally distributed");
    addWhen(command, options->when, Unsaid::everyCall);
    commands.add(command, [options] { return delay(*options); });
}

void addHang(CLI::App& app, Commands& commands)
{
    const auto options = std::make_shared<FaultOptions>();
    CLI::App& command = addControl(
        app, {"hang", kFaultGroup, "Make calls hang until 'arcsim clear'", "arcsim hang ARC_Close"}, options->control);
    addFunction(command, options->function, "Whose calls, as ARC_StopGNSS or stopgnss")->required();
    addWhen(command, options->when, Unsaid::nextCall);
    commands.add(command, [options] { return hang(*options); });
}

void addClear(CLI::App& app, Commands& commands)
{
    const auto options = std::make_shared<FaultOptions>();
    CLI::App& command = addControl(
        app, {"clear", kFaultGroup, "End what fail, delay and hang began", "arcsim clear ARC_Close"}, options->control);
    addFunction(command, options->function, "Of this function only");
    commands.add(command, [options] { return clear(options->control, options->function); });
}

}  // namespace

void addFaultCommands(CLI::App& app, Commands& commands)
{
    addFail(app, commands);
    addDelay(app, commands);
    addHang(app, commands);
    addClear(app, commands);
}

}  // namespace arcsim::program
