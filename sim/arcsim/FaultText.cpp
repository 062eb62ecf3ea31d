#include "arcsim/FaultText.h"

#include "arcsim/Duration.h"

#include <optional>
#include <vector>

namespace arcsim::program {

namespace {

/// The calls that a fault applies to: "the next call", "the next 3 calls".
struct Calls
{
    std::string text;
    bool isOne;
};

std::optional<std::int64_t> whole(const Json& object, const char* key)
{
    return object.is_object() && object.contains(key) ? wholeNumberOf(object[key]) : std::nullopt;
}

bool isFlag(const Json& fault, const char* key, bool value)
{
    return fault.contains(key) && fault[key].is_boolean() && fault[key].get<bool>() == value;
}

std::string timeText(std::int64_t ms)
{
    return durationText(std::chrono::milliseconds(ms));
}

Calls numberedCalls(std::int64_t call, std::int64_t count, const std::string& from)
{
    if (count == 1)
        return {"call " + std::to_string(call) + from, true};
    return {std::to_string(count) + " calls from call " + std::to_string(call) + from, false};
}

Calls callsOf(const Json& fault, CallNumber callNumber)
{
    const auto call = whole(fault, "call");
    const auto count = whole(fault, "count");
    const auto times = whole(fault, "times");
    if (call || count)
        return numberedCalls(call.value_or(1), count.value_or(1), callNumber == CallNumber::fromNow ? " from now" : "");
    if (times && *times == 1)
        return {"the next call", true};
    if (times)
        return {"the next " + std::to_string(*times) + " calls", false};
    return {"every call", true};
}

std::string latencyText(const Json& latency)
{
    if (const auto ms = wholeNumberOf(latency))
        return timeText(*ms);
    const auto shortest = whole(latency, "min");
    const auto longest = whole(latency, "max");
    if (shortest && longest)
        return timeText(*shortest) + " to " + timeText(*longest);
    const auto mean = whole(latency, "mean");
    const auto deviation = whole(latency, "deviation");
    if (mean && deviation)
        return timeText(*mean) + " on average, with a deviation of " + timeText(*deviation);
    return "another time";
}

/// What happens to the calls, each with the verb in the form for one call or several.
std::vector<std::string> effectsOf(const Json& fault, bool isOne)
{
    const auto verb = [isOne](const std::string& stem) { return stem + (isOne ? "s " : " "); };
    std::vector<std::string> effects;
    if (const auto code = whole(fault, "code"))
        effects.push_back(verb("answer") + std::to_string(*code));
    if (isFlag(fault, "hang", true))
        effects.push_back(isOne ? "hangs" : "hang");
    if (fault.contains("latencyMs"))
        effects.push_back(verb("take") + latencyText(fault["latencyMs"]));
    if (const auto indicator = whole(fault, "indicator"))
        effects.push_back(verb("report") + "indicator " + std::to_string(*indicator));
    if (const auto length = whole(fault, "replyLength"))
        effects.push_back(verb("return") + "texts of " + std::to_string(*length) + " characters");
    if (isFlag(fault, "quotes", false))
        effects.push_back(verb("return") + "texts without quotes");
    return effects;
}

std::string spanText(const Json& fault)
{
    std::string text;
    if (const auto from = whole(fault, "fromMs"))
        text += " from " + timeText(*from) + " on";
    if (const auto until = whole(fault, "untilMs"))
        text += " until " + timeText(*until);
    return text;
}

}  // namespace

std::string faultText(const Json& fault, CallNumber callNumber)
{
    if (!fault.is_object())
        return "-";
    const Calls calls = callsOf(fault, callNumber);
    const bool named = fault.contains("function") && fault["function"].is_string();
    std::string text = (named ? printable(fault["function"].get<std::string>()) : "-") + ": " + calls.text;
    const char* between = " ";
    for (const std::string& effect : effectsOf(fault, calls.isOne)) {
        text += between + effect;
        between = " and ";
    }
    return text + spanText(fault);
}

}  // namespace arcsim::program
