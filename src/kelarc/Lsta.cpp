#include "arc/ArcRilD.h"
#include "kelarc/Call.h"
#include "kelarc/CallPolicy.h"
#include "kelarc/Callback.h"
#include "kelarc/KelArc.h"
#include "kelarc/LstaTable.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace kelarc {
namespace {

/// Truncates toward zero; a value beyond int becomes the nearest int, not-a-number becomes 0.
int truncated(double value)
{
    if (std::isnan(value))
        return 0;
    constexpr double kLowest = std::numeric_limits<int>::min();
    constexpr double kHighest = std::numeric_limits<int>::max();
    return static_cast<int>(std::clamp(value, kLowest, kHighest));
}

}  // namespace

void KelArc::getLstaGnss(lsta::TECH tech, std::function<void(int, bool, int)>&& callback)
{
    const LstaTech* const row = lstaTech(tech);
    if (row == nullptr) {
        log(4, kSource, "getLstaGnss", 1021, "Unknown/unsupported tech id %u", static_cast<unsigned>(tech));
        callback(kRefusedArgument, false, 0);
        return;
    }

    addTask(kCurrentLstaCall, {"ARC_CurrentLSTA(\"", std::to_string(row->arcId), "\")"},
            [this, row, callback = std::move(callback)](task::ExecutionReason) {
                LstaInfo info{};  // cleared once: what a failed attempt wrote stays
                const CallResult result = runCall(kCurrentLstaCall, [&] { return ARC_CurrentLSTA(row->arcId, &info); });
                if (result.end == CallEnd::gaveUp) {
                    callback(result.code, false, 0);
                    return;
                }
                if (result.end != CallEnd::success || !isActive())
                    return;  // a cancelled query answers nothing, even when it has just succeeded: published
                if (info.indicator != row->indicator) {
                    // "expected" shows the id of the call, not the indicator: published.
                    log(4, kSource, "operator()", 1093, "Received wrong indicator %d from '%s', expected %d",
                        info.indicator, ownCallText(), row->arcId);
                    callback(result.code, false, 0);
                    return;
                }
                callback(result.code, info.status != 0, truncated(info.value));
            });
}

void KelArc::setLstaGnssStatus(lsta::TECH tech, bool enable, int parameter,
                               std::function<void(lsta::TYPE, int, double)>&& lstaCallback,
                               std::function<void(int)>&& resultCallback)
{
    const LstaTech* const row = lstaTech(tech);
    if (row == nullptr) {
        log(4, kSource, "setLstaGnssStatus", 1129, "Unknown/unsupported tech id %u", static_cast<unsigned>(tech));
        resultCallback(kRefusedArgument);
        return;
    }

    // Allocates first: if that fails, nothing has happened.
    std::string name = taskName(kEnableLstaCall, {"ARC_EnableLSTA(\"", std::to_string(row->arcId), "\", \"",
                                                  enable ? "1" : "0", "\", \"", std::to_string(parameter), "\")"});
    std::shared_ptr<LstaCallback> replacement = heldApart(std::move(lstaCallback));
    std::function<void(task::ExecutionReason)> body = [this, arcId = row->arcId, enable, parameter,
                                                       resultCallback =
                                                           std::move(resultCallback)](task::ExecutionReason) {
        const CallResult result = runCall(kEnableLstaCall, [&] { return ARC_EnableLSTA(arcId, enable, parameter); });
        if (result.end == CallEnd::gaveUp)  // the caller hears of failures only: published
            resultCallback(result.code);
    };

    {
        const std::lock_guard<std::mutex> lock(m_callbackMutex);
        lstaCallbackOf(*row).swap(replacement);
    }
    replacement.reset();  // the old callback is the user's: destroy it without the lock, before the task can run
    addTask(std::move(name), std::move(body));
}

std::shared_ptr<KelArc::LstaCallback>& KelArc::lstaCallbackOf(const LstaTech& tech)
{
    switch (tech.tech) {
    case lsta::TECH::GLONASS:
        return m_lstaGlonassCb;
    case lsta::TECH::BEIDOU:
        return m_lstaBeidouCb;
    case lsta::TECH::GALILEO:
        return m_lstaGalileoCb;
    default:
        return m_lstaGpsCb;
    }
}

}  // namespace kelarc
