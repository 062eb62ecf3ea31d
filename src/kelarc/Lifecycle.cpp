#include "arc/ArcRilD.h"
#include "kelarc/Call.h"
#include "kelarc/CallPolicy.h"
#include "kelarc/KelArc.h"

#include <new>
#include <utility>

namespace kelarc {

std::atomic<KelArc*> KelArc::s_instance{nullptr};

KelArc::KelArc(std::function<void(int, char const*)>&& logCb)
{
    m_taskQueue.start();  // first: if it fails, the callback is still the caller's and no event comes here
    m_logCb = std::move(logCb);
    s_instance = this;
}

KelArc::~KelArc()
{
    try {
        close();
    } catch (const std::bad_alloc&) {
        setActive(false);  // the close task is lost; it is not guaranteed to run anyway
    }
    m_taskQueue.stop();
}

void KelArc::open(std::function<void(int)>&& cb)
{
    if (isActive() || isOpen())
        return;

    // Allocates first, so that either both tasks are queued or nothing has happened.
    std::string methodName = taskName(kSetNotificationMethodCall, {"ARC_SetNotificationMethod()"});
    std::string openName = taskName(kOpenCall, {"ARC_Open()"});
    // Holds the callback without calling it, so that it lives until both tasks are done.
    std::function<void(task::ExecutionReason)> setMethod = [this, held = cb](task::ExecutionReason) {
        static_cast<void>(held);
        runCallNamed("ARC_SetNotificationMethod(ARC_NOTIFY_METHOD_SINGLETHREAD)", kSetNotificationMethodCall,
                     [] { return ARC_SetNotificationMethod(ARC_NOTIFY_METHOD_SINGLETHREAD); });
    };
    std::function<void(task::ExecutionReason)> openIt = [this, cb](task::ExecutionReason) {
        int code = kNotAttempted;  // open already
        if (!isOpen())
            code = runCall(kOpenCall, [this] {
                       const int result = ARC_Open();
                       setOpen(result == kSuccess);
                       return result;
                   }).code;
        setActive(true);
        cb(code);
    };

    addTask(std::move(methodName), std::move(setMethod));
    addTask(std::move(openName), std::move(openIt));
}

void KelArc::close(std::function<void(int)>&& cb)
{
    // Allocates first: if that fails, nothing has happened.
    std::string name = taskName(kCloseCall, {"ARC_Close()"});
    std::function<void(task::ExecutionReason)> body = [this, cb](task::ExecutionReason) {
        int code = kNotAttempted;  // closed already
        if (isOpen())
            code = runCall(kCloseCall, [this] {
                       const int result = ARC_Close();
                       setOpen(result != kSuccess);
                       return result;
                   }).code;
        setOpen(false);  // also when closing failed: nothing more can be tried
        cb(code);
    };

    setActive(false);  // ends requests that are being repeated, also when the object is not open
    if (isOpen())
        addTask(std::move(name), std::move(body));
}

}  // namespace kelarc
