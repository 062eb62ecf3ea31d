#include "arc/ArcRilD.h"
#include "kelarc/Call.h"
#include "kelarc/CallPolicy.h"
#include "kelarc/Callback.h"
#include "kelarc/KelArc.h"

#include <utility>

namespace kelarc {

void KelArc::startRawGNSS(std::function<void(int, std::string&&)>&& callback)
{
    addTask(kStartGnssRawCall, {"ARC_StartGNSSraw()"}, [this, callback = std::move(callback)](task::ExecutionReason) {
        char text[255] = {};  // cleared once: what a failed attempt wrote stays
        const CallResult result =
            runCall(kStartGnssRawCall, [&text] { return ARC_StartGNSSraw(text, sizeof text - 1); });
        // Called before the answer, whatever the outcome.
        if (const std::shared_ptr<NotificationCallback> notify = holdNotificationCallback())
            (*notify)(NOTIFY_ID::RAW_GNSS_START_ENDED, nullptr, 0);
        callback(result.code, std::string(text));
    });
}

void KelArc::stopGNSS(std::function<void(int)>&& callback)
{
    // Allocates first: if that fails, nothing has happened.
    std::string name = taskName(kStopGnssCall, {"ARC_StopGNSS()"});
    std::function<void(task::ExecutionReason)> body = [this, callback = std::move(callback)](task::ExecutionReason) {
        setActive(true);
        callback(runCall(kStopGnssCall, [] { return ARC_StopGNSS(); }).code);
    };

    setActive(false);  // cancels running and waiting requests; the task ends the cancellation
    log(2, kSource, "stopGNSS", 600, "stopGNSS called, cancelling current ARC tasks");
    addTask(std::move(name), std::move(body));
}

void KelArc::forceStopGNSS(std::function<void(int)>&& callback)
{
    addTask(kForceStopGnssCall, {"ARC_ForceStopGNSS()"}, [this, callback = std::move(callback)](task::ExecutionReason) {
        callback(runCall(kForceStopGnssCall, [] { return ARC_ForceStopGNSS(); }).code);
    });
}

void KelArc::resetAGNSS(std::function<void(int)>&& callback)
{
    addTask(kResetAgnssCall, {"ARC_ResetAGNSS()"}, [this, callback = std::move(callback)](task::ExecutionReason) {
        callback(runCall(kResetAgnssCall, [] { return ARC_ResetAGNSS(); }).code);
    });
}

}  // namespace kelarc
