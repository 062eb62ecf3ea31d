#include "arcsim/FaultsOfCalls.h"

#include "modem/Requests.h"
#include "modem/ResultCode.h"
#include "scenario/JsonNode.h"

#include <algorithm>

namespace arcsim {

using nlohmann::ordered_json;
using std::chrono::microseconds;

namespace {

constexpr long long kHiccupMs = 100;  // the system's scheduler alone may delay a call by this much

/// The result code. The one function without a code has a text instead, or none.
int codeOf(const RecordedCall& call)
{
    const bool withoutText = call.function == "ARC_GetArcVersion" && call.end->outputs.dump() == R"({"version":null})";
    return call.end->code == 0 && withoutText ? modem::kGenericError : call.end->code;
}

}  // namespace

long long scenarioMs(microseconds time)
{
    return std::clamp<long long>((time.count() + 500) / 1000, 0, kLatestTime.count());
}

void FaultsOfCalls::add(const RecordedCall& call)
{
    const std::string function(call.function);
    const unsigned number = ++m_counts[function];
    if (!call.end) {
        push({{"function", function}, {"call", number}, {"hang", true}});
        return;
    }
    const std::optional<std::size_t> request = modem::findRequest(function);
    const long long tookMs = scenarioMs(call.end->took);
    const long long longestMs = modem::kRequests.at(*request).longestMs;
    const bool isLong = tookMs > 2 * longestMs && tookMs >= longestMs + kHiccupMs;
    const int code = codeOf(call);
    if (code != 0)
        addFailure(call, number, code, isLong);
    else if (isLong)
        push({{"function", function}, {"call", number}, {"latencyMs", tookMs}});
}

/// Its index in the list.
std::size_t FaultsOfCalls::push(ordered_json fault)
{
    if (m_faults.size() == kMostElements) {
        ++m_leftOut;
        return kNowhere;
    }
    m_faults.push_back(std::move(fault));
    return m_faults.size() - 1;
}

/// A failure that took unusually long gets a fault of its own; the others share one latency.
void FaultsOfCalls::addFailure(const RecordedCall& call, unsigned number, int code, bool isLong)
{
    const std::string function(call.function);
    Failures& open = m_open[function];
    const bool goesOn = !isLong && open.count > 0 && open.code == code && open.first + open.count == number;
    if (!goesOn)
        open = {number, 0, code, {}, push(nullptr)};
    ++open.count;
    open.took += call.end->took;
    if (open.index != kNowhere)
        m_faults[open.index] = faultOf(function, open);
    if (isLong)
        open.count = 0;
}

ordered_json FaultsOfCalls::faultOf(const std::string& function, const Failures& failures)
{
    ordered_json fault{{"function", function}, {"call", failures.first}};
    if (failures.count > 1)
        fault["count"] = failures.count;
    fault["code"] = failures.code;
    fault["latencyMs"] = scenarioMs(failures.took / static_cast<long>(failures.count));
    return fault;
}

}  // namespace arcsim
