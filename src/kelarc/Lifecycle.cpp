#include "arc/ArcRilD.h"
#include "kelarc/Call.h"
#include "kelarc/CallPolicy.h"
#include "kelarc/KelArc.h"

#include <utility>

namespace kelarc {

std::atomic<KelArc*> KelArc::s_instance{nullptr};

KelArc::KelArc(std::function<void(int, char const*)>&& logCb) : m_logCb(std::move(logCb))
{
    s_instance = this;
    m_taskQueue.start();
}

KelArc::~KelArc()
{
    close();
    m_taskQueue.stop();
}

void KelArc::open(std::function<void(int)>&& cb)
{
    if (isActive() || isOpen())
        return;

    // Holds the callback without calling it, so that it lives until both tasks are done.
    addTask(kSetNotificationMethodCall, {"ARC_SetNotificationMethod()"}, [this, held = cb](task::ExecutionReason) {
        static_cast<void>(held);
        runCallNamed("ARC_SetNotificationMethod(ARC_NOTIFY_METHOD_SINGLETHREAD)", kSetNotificationMethodCall,
                     [] { return ARC_SetNotificationMethod(ARC_NOTIFY_METHOD_SINGLETHREAD); });
    });

    addTask(kOpenCall, {"ARC_Open()"}, [this, cb](task::ExecutionReason) {
        int code = kGenericError;  // open already
        if (!isOpen())
            code = runCall(kOpenCall, [this] {
                       const int result = ARC_Open();
                       setOpen(result == kSuccess);
                       return result;
                   }).code;
        setActive(true);
        cb(code);
    });
}

void KelArc::close(std::function<void(int)>&& cb)
{
    setActive(false);  // ends what is being repeated, whether there is anything to close or not
    if (!isOpen())
        return;

    addTask(kCloseCall, {"ARC_Close()"}, [this, cb](task::ExecutionReason) {
        int code = kGenericError;  // closed already
        if (isOpen())
            code = runCall(kCloseCall, [this] {
                       const int result = ARC_Close();
                       setOpen(result != kSuccess);
                       return result;
                   }).code;
        setOpen(false);  // also when closing failed: there is nothing more that could be tried
        cb(code);
    });
}

}  // namespace kelarc
