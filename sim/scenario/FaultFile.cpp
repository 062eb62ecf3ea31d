#include "scenario/FaultFile.h"

#include "modem/Requests.h"
#include "modem/ResultCode.h"
#include "scenario/Span.h"
#include "support/Words.h"

#include <limits>

namespace arcsim {

namespace {

using modem::Fault;
using modem::Latency;

constexpr long long kHighestInt = std::numeric_limits<int>::max();
constexpr long long kLongestReply = 4096;

std::vector<std::string> requestNames()
{
    std::vector<std::string> names;
    for (const modem::RequestKind& kind : modem::kRequests)
        names.emplace_back(kind.name);
    return names;
}

int readFaultCode(const JsonNode& node)
{
    const auto code = static_cast<int>(node.integer(-kHighestInt, kHighestInt));
    if (code == modem::kSuccess)
        node.refuse("a result code other than 0 (leave it out for a call that only takes longer)");
    return code;
}

unsigned readCount(const JsonNode& node)
{
    return static_cast<unsigned>(node.integer(1, kHighestInt));
}

void requireFlag(const JsonNode& node, bool value, const char* otherwise)
{
    if (node.flag() != value)
        node.refuse((value ? "true (leave it out for " : "false (leave it out for ") + std::string(otherwise) + ")");
}

void readWhen(const JsonNode& node, Fault& fault)
{
    if (node.has("call") || node.has("count"))
        fault.firstCall = 1;
    if (const auto call = node.find("call"))
        fault.firstCall = readCount(*call);
    if (const auto count = node.find("count"))
        fault.callCount = readCount(*count);
    if (const auto from = node.find("fromMs"))
        fault.from = from->time();
    if (const auto until = node.find("untilMs"))
        fault.until = readEnd(*until, fault.from.value_or(std::chrono::milliseconds(0)));
    if (const auto times = node.find("times"))
        fault.times = readCount(*times);
}

void readWhat(const JsonNode& node, Fault& fault)
{
    if (const auto code = node.find("code"))
        fault.code = readFaultCode(*code);
    if (const auto latency = node.find("latencyMs"))
        fault.latency = readLatency(*latency);
    if (const auto hang = node.find("hang")) {
        requireFlag(*hang, true, "a call that comes back");
        fault.hangs = true;
    }
    if (const auto indicator = node.find("indicator"))
        fault.indicator = static_cast<int>(indicator->integer(-kHighestInt, kHighestInt));
    if (const auto length = node.find("replyLength"))
        fault.replyLength = static_cast<std::size_t>(length->integer(1, kLongestReply));
    if (const auto quotes = node.find("quotes")) {
        requireFlag(*quotes, false, "a reply as usual");
        fault.withoutQuotes = true;
    }
}

nlohmann::ordered_json latencyJson(const Latency& latency)
{
    if (latency.shape == Latency::Shape::normal)
        return {{"mean", latency.a.count()}, {"deviation", latency.b.count()}};
    if (latency.a == latency.b)
        return latency.a.count();
    return {{"min", latency.a.count()}, {"max", latency.b.count()}};
}

}  // namespace

std::size_t readRequest(const JsonNode& node)
{
    return node.word(requestNames());
}

Latency readLatency(const JsonNode& node)
{
    const char* const accepted = "a time in milliseconds";
    if (node.has("min") || node.has("max")) {
        node.requireKeys({"min", "max"});
        const Latency latency{Latency::Shape::even, node.at("min", accepted).time(), node.at("max", accepted).time()};
        if (latency.b < latency.a)
            node.at("max", accepted)
                .refuse("a whole number from " + std::to_string(latency.a.count()) + " (min) to " +
                        std::to_string(kLatestTime.count()));
        return latency;
    }
    if (node.has("mean") || node.has("deviation")) {
        node.requireKeys({"mean", "deviation"});
        return {Latency::Shape::normal, node.at("mean", accepted).time(), node.at("deviation", accepted).time()};
    }
    if (!node.isNumber())
        node.refuse("a whole number from 0 to " + std::to_string(kLatestTime.count()) +
                    ", or an object with the keys min, max or mean, deviation");
    return Latency::fixed(node.time());
}

Fault readFault(const JsonNode& node, bool injected)
{
    node.requireKeys({"function", "call", "count", "fromMs", "untilMs", "times", "code", "latencyMs", "hang",
                      "indicator", "replyLength", "quotes"});
    Fault fault;
    fault.request = readRequest(node.at("function", support::joined(requestNames())));
    readWhen(node, fault);
    readWhat(node, fault);
    if (!injected && !fault.firstCall && !fault.from && !fault.until && !fault.times)
        node.refuse("an object that says when: by call, count, fromMs, untilMs or times");
    if (!fault.code && !fault.latency && !fault.hangs && !fault.indicator && !fault.replyLength && !fault.withoutQuotes)
        node.refuse("an object that says what: by code, latencyMs, hang, indicator, replyLength or quotes");
    return fault;
}

nlohmann::ordered_json faultJson(const Fault& fault)
{
    nlohmann::ordered_json json = {{"function", modem::kRequests.at(fault.request).name}};
    const auto add = [&json](const char* key, const auto& value) {
        if (value)
            json[key] = *value;
    };
    const auto addTime = [&json](const char* key, const std::optional<std::chrono::milliseconds>& value) {
        if (value)
            json[key] = value->count();
    };
    add("call", fault.firstCall);
    if (fault.firstCall)
        json["count"] = fault.callCount;
    addTime("fromMs", fault.from);
    addTime("untilMs", fault.until);
    add("times", fault.times);
    add("code", fault.code);
    if (fault.latency)
        json["latencyMs"] = latencyJson(*fault.latency);
    if (fault.hangs)
        json["hang"] = true;
    add("indicator", fault.indicator);
    add("replyLength", fault.replyLength);
    if (fault.withoutQuotes)
        json["quotes"] = false;
    return json;
}

}  // namespace arcsim
